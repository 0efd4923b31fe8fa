#include "app/ui/startup.h"

#include "http/download.h"
#include "startup/startnotices.h"
#include "startup/updatecheck.h"

namespace hollowmere {

/// The page stays in memory: a file of a known name could be another user's.
struct TStartUp::TFetch {
  std::string address;
  TDownloadLimits limits;
  TStopFlag stop;
  std::string page;
};

TStartUp::TStartUp(TWindowContext& context, TWebAddresses addresses, QObject* parent)
    : QObject(parent), context_(context), addresses_(std::move(addresses)) {
  timer_.setSingleShot(true);
  connect(&timer_, &QTimer::timeout, this, &TStartUp::onTimer);
}

TStartUp::~TStartUp() {
  if (fetch_) fetch_->stop.set();
}

void TStartUp::begin(int delay) { timer_.start(delay); }

void TStartUp::onTimer() {
  if (warnsAbout64Bit(context_.settings.bit64Warn, runsOnWindows(), runsOn64Bit())) warnAbout64Bit();
  if (addresses_.downloadPage.empty())
    Q_EMIT checked();
  else
    fetchPage();
}

void TStartUp::warnAbout64Bit() {
  if (context_.prompt.ask(TPromptKind::Warning, noticetexts::bit64, TButtons::YesNo) == TAnswer::No)
    context_.settings.bit64Warn = false;
}

void TStartUp::fetchPage() {
  fetch_ = std::make_shared<TFetch>();
  fetch_->address = addresses_.downloadPage;
  fetch_->limits.time = std::chrono::seconds(context_.settings.httpTimeout);
  worker_ = std::jthread([this, fetch = fetch_] {
    try {
      fetch->page = download(fetch->address, fetch->limits, fetch->stop);
    } catch (const std::exception&) {
      fetch->page.clear();  // nobody asked for the check: without a page there is nothing to say
    }
    QMetaObject::invokeMethod(
        this, [this, fetch] { onPage(fetch->page); }, Qt::QueuedConnection);
  });
}

void TStartUp::onPage(const std::string& page) {
  const auto release = parseDownloadPage(page);
  if (release && announces(release->version, HOLLOWMERE_VERSION, context_.settings.warnVersion)) {
    context_.settings.warnVersion = release->version;
    if (context_.prompt.confirm(updatetexts::question)) {
      const std::string& site = addresses_.site.empty() ? addresses_.downloadPage : addresses_.site;
      context_.openOutside(QString::fromStdString(site));
    }
  }
  Q_EMIT checked();
}

}  // namespace hollowmere

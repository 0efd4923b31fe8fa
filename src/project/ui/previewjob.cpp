#include "project/ui/previewjob.h"

#include <QPointer>

#include "project/runcheck.h"

namespace hollowmere {

namespace {

constexpr int delayMilliseconds = 300;
constexpr std::int64_t previewRows = 100;

}  // namespace

struct TPreviewJob::TRequest {
  TProject project;
  std::size_t root = 0;
  const TStoreConnector* store = nullptr;
  TStoreOptions options;
  TStopFlag stop;
  TPreviewResult result;

  /// On the worker.
  void read(const TDateTimeText& dates) {
    try {
      const auto reader = store->connectSource(options);
      const TMapNode& mapping = project.mapping[root];
      result.fields = sampleFields(*reader, project.dataSources, mapping);
      previewMapping(*reader, project.dataSources, mapping, project.ignoreNulls, dates, previewRows,
                     [this](TPreviewRow&& row) {
                       result.rows.push_back(std::move(row));
                       return !stop.isSet();
                     });
    } catch (const std::exception& error) {
      result.error = error.what();
    }
  }
};

TPreviewJob::TPreviewJob(TWindowContext& context, QObject* parent) : QObject(parent), context_(context) {
  delay_.setSingleShot(true);
  delay_.setInterval(delayMilliseconds);
  connect(&delay_, &QTimer::timeout, this, &TPreviewJob::start);
}

TPreviewJob::~TPreviewJob() {
  if (running_) running_->stop.set();
}

void TPreviewJob::request(const TProject& project, std::size_t root) {
  const TStoreConnector* store = context_.stores.find(project.source.dbType);
  if (!store || root >= project.mapping.size()) return;
  waiting_ = std::make_shared<TRequest>();
  waiting_->project = project;
  waiting_->root = root;
  waiting_->store = store;
  waiting_->options = sourceOptions(project, static_cast<std::size_t>(context_.settings.bufLen));
  waiting_->options.fetchLimit = previewRows;
  waiting_->options.stop = &waiting_->stop;
  if (running_) running_->stop.set();
  delay_.start();
}

void TPreviewJob::start() {
  // The one that runs starts this again when it has ended.
  if (running_ || !waiting_) return;
  if (worker_.joinable()) worker_.join();
  running_ = std::move(waiting_);
  Q_EMIT started();
  worker_ = std::jthread([this, request = running_, &dates = context_.dates] {
    request->read(dates);
    QMetaObject::invokeMethod(
        this, [this, request] { onDone(request); }, Qt::QueuedConnection);
  });
}

void TPreviewJob::onDone(const std::shared_ptr<TRequest>& request) {
  running_.reset();
  if (waiting_) return start();
  Q_EMIT finished(request->root, request->result);
}

}  // namespace hollowmere

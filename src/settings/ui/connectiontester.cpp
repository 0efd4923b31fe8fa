#include "settings/ui/connectiontester.h"

#include <QCoreApplication>
#include <cassert>

#include "ui/windowcontext.h"

namespace hollowmere {

/// One check and its thread. Belongs to the application, so that it may outlive the window.
class TConnectionTester::TRun : public QObject {
 public:
  TRun(const TStoreConnector& store, const ConnectionConfig& record)
      : QObject(QCoreApplication::instance()),
        check_(std::make_unique<TConnectionCheck>(store, record, [this] {
          QMetaObject::invokeMethod(
              this, [this] { end(); }, Qt::QueuedConnection);
        })) {
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, [this] { check_.reset(); });
  }
  ~TRun() override { check_.reset(); }

  std::function<void(const std::string& fault)> over;  ///< empty when nobody waits any longer

  void stop() { check_->stop(); }

 private:
  void end() {
    if (over && check_) over(check_->fault());
    deleteLater();
  }

  std::unique_ptr<TConnectionCheck> check_;
};

TConnectionTester::TConnectionTester(const TStoreRegistry& stores, QObject* parent)
    : QObject(parent), stores_(stores) {
  timeout_.setSingleShot(true);
  timeout_.setInterval(std::chrono::seconds(TConnectionCheck::seconds));
  connect(&timeout_, &QTimer::timeout, this, &TConnectionTester::onTimeout);
}

TConnectionTester::~TConnectionTester() { leave(); }

void TConnectionTester::start(const ConnectionConfig& record) {
  assert(!isRunning());
  const TValue* type = record.find("dbtype");
  dbType_ = type != nullptr && type->is(TKind::Text) ? type->asText() : std::string();
  const TStoreConnector* store = stores_.find(dbType_);
  if (store == nullptr) {
    Q_EMIT ended(false, text(checktexts::missing(dbType_)));
    return;
  }
  run_ = new TRun(*store, record);
  run_->over = [this](const std::string& fault) { onOver(fault); };
  timeout_.start();
}

void TConnectionTester::cancel() {
  if (!isRunning()) return;
  leave();
  Q_EMIT ended(false, text(checktexts::cancelled));
}

void TConnectionTester::onOver(const std::string& fault) {
  leave();
  const std::string message =
      fault.empty() ? checktexts::reached(dbType_) : checktexts::failed(dbType_, fault);
  Q_EMIT ended(fault.empty(), text(message));
}

void TConnectionTester::onTimeout() {
  leave();
  Q_EMIT ended(false, text(checktexts::tooLong(dbType_)));
}

void TConnectionTester::leave() {
  timeout_.stop();
  if (!isRunning()) return;
  run_->stop();
  run_->over = nullptr;
  run_.clear();
}

}  // namespace hollowmere

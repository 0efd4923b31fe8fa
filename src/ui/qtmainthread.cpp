#include "ui/qtmainthread.h"

#include <QApplication>
#include <QEventLoop>
#include <QProgressDialog>
#include <QThread>
#include <QTimer>
#include <exception>
#include <thread>

namespace hollowmere {

void TQtMainThread::run(const std::function<void()>& call) {
  if (QThread::currentThread() == thread()) return call();
  std::exception_ptr error;
  QMetaObject::invokeMethod(
      this,
      [&] {
        try {
          call();
        } catch (...) {
          error = std::current_exception();
        }
      },
      Qt::BlockingQueuedConnection);
  if (error) std::rethrow_exception(error);
}

void TQtMainThread::pump(int milliseconds) {
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents | QEventLoop::WaitForMoreEvents,
                                  milliseconds);
}

void runWithWaitDialog(const QString& caption, const std::function<void()>& call, TStopFlag& stop,
                       const std::function<QString()>& status) {
  std::exception_ptr error;
  QEventLoop loop;
  QProgressDialog dialog(caption, QCoreApplication::translate("Messages", "&Stop"), 0, 0,
                         QApplication::activeWindow());
  dialog.setObjectName(QStringLiteral("waitDialog"));
  dialog.setWindowModality(Qt::ApplicationModal);
  dialog.setMinimumDuration(400);
  dialog.setValue(0);
  QObject::connect(&dialog, &QProgressDialog::canceled, &dialog, [&] {
    stop.set();
    dialog.setLabelText(QCoreApplication::translate("Messages", "Stopping..."));
  });
  QTimer telling;
  QObject::connect(&telling, &QTimer::timeout, &dialog, [&] {
    if (!stop.isSet()) dialog.setLabelText(caption + QLatin1Char('\n') + status());
  });
  if (status) telling.start(200);
  std::jthread worker([&] {
    try {
      call();
    } catch (...) {
      error = std::current_exception();
    }
    QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
  });
  loop.exec();
  worker.join();
  if (error) std::rethrow_exception(error);
}

}  // namespace hollowmere

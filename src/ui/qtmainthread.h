#pragma once

#include <QObject>
#include <functional>

#include "connectors/loadtypes.h"
#include "settings/mainthread.h"

namespace hollowmere {

/// The main thread of a program with an event loop. Made on that thread.
class TQtMainThread : public QObject, public TMainThread {
  Q_OBJECT

 public:
  using QObject::QObject;

  void run(const std::function<void()>& call) override;
  void pump(int milliseconds) override;
};

/// Runs a call on a thread of its own while the windows stay alive, and returns when it is done. After a
/// moment a small dialog says what is waited for and offers to stop, which sets the flag. An exception of
/// the call comes through. status, asked now and then on the main thread, says how far the call is.
void runWithWaitDialog(const QString& caption, const std::function<void()>& call, TStopFlag& stop,
                       const std::function<QString()>& status = {});

}  // namespace hollowmere

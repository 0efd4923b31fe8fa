#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <chrono>

#include "connectors/connectioncheck.h"

namespace hollowmere {

/// Tries connections for a window, one at a time. Whoever gives up, by cancelling, by time-out or by ending
/// this object, never waits for the store: what still runs is told to stop and left to end by itself, at the
/// latest when the application quits.
class TConnectionTester : public QObject {
  Q_OBJECT

 public:
  explicit TConnectionTester(const TStoreRegistry& stores, QObject* parent = nullptr);
  ~TConnectionTester() override;

  /// Begins; ended() follows, at once for a store that is not there. Not while one is running (an assertion).
  void start(const ConnectionConfig& record);
  void cancel();
  [[nodiscard]] bool isRunning() const { return !run_.isNull(); }
  void setTimeout(std::chrono::milliseconds time) { timeout_.setInterval(time); }

 Q_SIGNALS:
  void ended(bool reached, const QString& message);

 private:
  class TRun;

  void onOver(const std::string& fault);
  void onTimeout();
  void leave();

  const TStoreRegistry& stores_;
  QPointer<TRun> run_;
  QTimer timeout_;
  std::string dbType_;
};

}  // namespace hollowmere

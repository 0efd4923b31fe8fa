#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <thread>

#include "connectors/mongodb/shellrunner.h"

namespace hollowmere {

/// One run of a shell on a thread of its own, so that a window stays alive. Made, asked and ended on one
/// thread.
class TShellTask {
 public:
  /// Begins at once; settings.stop is replaced by the task's own flag. ended is called on the other thread,
  /// last thing there.
  TShellTask(TShellSettings settings, std::string recordText, TShellCommand command,
             std::function<void()> ended);
  TShellTask(const TShellTask&) = delete;
  TShellTask& operator=(const TShellTask&) = delete;
  /// Ends the shell, and waits for that: two seconds at most.
  ~TShellTask();

  void stop() { stop_.set(); }
  [[nodiscard]] bool isOver() const { return over_.load(std::memory_order_acquire); }
  /// Once it is over.
  [[nodiscard]] const TShellResult& result() const { return result_; }

 private:
  TStopFlag stop_;
  TDateTimeText dates_;
  TShellResult result_;
  std::atomic<bool> over_ = false;
  std::thread thread_;
};

}  // namespace hollowmere

#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include "settings/mainthread.h"

namespace hollowmere {

/// The main thread of a program without an event loop: workers queue their calls, the main thread runs
/// them in pump(). A call made on the pumping thread itself runs at once.
class TCallQueue : public TMainThread {
 public:
  /// The thread that makes the queue is the main thread.
  TCallQueue();

  void run(const std::function<void()>& call) override;

  /// Waits until a call comes or the time is over, and runs all that wait.
  void pump(int milliseconds) override;

 private:
  struct TCall;

  std::mutex mutex_;
  std::condition_variable came_;
  std::condition_variable done_;
  std::deque<TCall*> calls_;
  std::thread::id mainThread_;
};

}  // namespace hollowmere

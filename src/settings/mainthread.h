#pragma once

#include <functional>

namespace hollowmere {

/// run() runs a call on the main thread and returns when it has run. A call that throws throws here again.
/// Workers use it to hand over; tests run the call at once.
class TMainThread {
 public:
  virtual ~TMainThread() = default;
  virtual void run(const std::function<void()>& call) = 0;
  /// Lets the calls run that wait, and waits for some for so long. Main thread only.
  virtual void pump(int milliseconds) = 0;
};

/// For tests and for programs of one thread.
class TInlineMainThread : public TMainThread {
 public:
  void run(const std::function<void()>& call) override { call(); }
  void pump(int) override {}
};

}  // namespace hollowmere

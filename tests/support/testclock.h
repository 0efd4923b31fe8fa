#pragma once

#include <atomic>
#include <cstdint>

#include "settings/clock.h"

namespace hollowmere {

/// Stands still until it is told to go on.
class TTestClock : public TClock {
 public:
  explicit TTestClock(std::int64_t now = 0) : now_(now) {}

  [[nodiscard]] std::int64_t now() const override { return now_; }
  [[nodiscard]] std::int64_t ticks() const override { return ticks_; }

  /// As when the machine's date is set: ticks() does not notice.
  void setNow(std::int64_t now) { now_ = now; }
  void advance(std::int64_t milliseconds) {
    now_ += milliseconds;
    ticks_ += milliseconds;
  }

 private:
  std::atomic<std::int64_t> now_;
  std::atomic<std::int64_t> ticks_ = 0;
};

}  // namespace hollowmere

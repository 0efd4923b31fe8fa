#pragma once

#include <cstdint>

namespace hollowmere {

/// Time as the program sees it; tests set it. May be called from any thread.
class TClock {
 public:
  virtual ~TClock() = default;
  /// Milliseconds since 1970-01-01 00:00 UTC.
  [[nodiscard]] virtual std::int64_t now() const = 0;
  /// Milliseconds of a clock that never jumps; only differences mean something.
  [[nodiscard]] virtual std::int64_t ticks() const = 0;
};

/// The machine's own clocks.
class TSystemClock : public TClock {
 public:
  [[nodiscard]] std::int64_t now() const override;
  [[nodiscard]] std::int64_t ticks() const override;
};

}  // namespace hollowmere

#include "settings/clock.h"

#include <chrono>

namespace hollowmere {

namespace {

template <typename Clock>
std::int64_t millisecondsOf() {
  using std::chrono::duration_cast;
  using std::chrono::milliseconds;
  return duration_cast<milliseconds>(Clock::now().time_since_epoch()).count();
}

}  // namespace

std::int64_t TSystemClock::now() const { return millisecondsOf<std::chrono::system_clock>(); }

std::int64_t TSystemClock::ticks() const { return millisecondsOf<std::chrono::steady_clock>(); }

}  // namespace hollowmere

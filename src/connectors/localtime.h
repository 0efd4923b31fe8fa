#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace hollowmere {

/// A moment as a calendar and a clock on the wall show it.
struct TDateParts {
  int year = 1970;  ///< astronomical: 0 is the year before 1
  int month = 1;
  int day = 1;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int millisecond = 0;
};

/// Milliseconds from 1970-01-01 00:00 to the parts, no time zone involved. Nothing when the calendar or
/// the clock has no such moment (31 February, 24:00).
std::optional<std::int64_t> wallMilliseconds(const TDateParts& parts);
/// The reverse. Nothing beyond the years -32766 to 32766.
std::optional<TDateParts> wallParts(std::int64_t wallMilliseconds);

/// Milliseconds by which the machine's time zone is ahead of UTC at a moment (milliseconds since 1970 UTC).
std::int64_t localOffset(std::int64_t utc);
/// The moment at which local clocks show a time. Of an hour that comes twice, its first passage; a time
/// that is skipped counts as if the clock had not been put forward yet.
std::int64_t localToUtc(std::int64_t wallMilliseconds);

}  // namespace hollowmere

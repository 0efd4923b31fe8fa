#include "connectors/localtime.h"

#include <ctime>

namespace hollowmere {

using namespace std::chrono;

std::optional<std::int64_t> wallMilliseconds(const TDateParts& parts) {
  if (parts.year < -32766 || parts.year > 32766 || parts.month < 1 || parts.day < 1) return std::nullopt;
  if (parts.hour > 23 || parts.minute > 59 || parts.second > 59) return std::nullopt;
  const year_month_day date{year(parts.year), month(static_cast<unsigned>(parts.month)),
                            day(static_cast<unsigned>(parts.day))};
  if (!date.ok()) return std::nullopt;
  const auto clock = hours(parts.hour) + minutes(parts.minute) + seconds(parts.second);
  return (sys_days{date}.time_since_epoch() + clock + milliseconds(parts.millisecond)) / milliseconds(1);
}

std::optional<TDateParts> wallParts(std::int64_t wallMilliseconds) {
  constexpr std::int64_t lowest = sys_days{year(-32766) / 1 / 1}.time_since_epoch() / milliseconds(1);
  constexpr std::int64_t limit = sys_days{year(32767) / 1 / 1}.time_since_epoch() / milliseconds(1);
  if (wallMilliseconds < lowest || wallMilliseconds >= limit) return std::nullopt;
  const sys_time<milliseconds> moment{milliseconds(wallMilliseconds)};
  const auto midnight = floor<days>(moment);
  const year_month_day date{midnight};
  const hh_mm_ss time{moment - midnight};
  TDateParts parts;
  parts.year = static_cast<int>(date.year());
  parts.month = static_cast<int>(static_cast<unsigned>(date.month()));
  parts.day = static_cast<int>(static_cast<unsigned>(date.day()));
  parts.hour = static_cast<int>(time.hours().count());
  parts.minute = static_cast<int>(time.minutes().count());
  parts.second = static_cast<int>(time.seconds().count());
  parts.millisecond = static_cast<int>(time.subseconds().count());
  return parts;
}

std::int64_t localOffset(std::int64_t utc) {
  // Far outside every calendar; adding an offset must not overflow.
  constexpr std::int64_t far = 2'000'000'000'000'000;
  if (utc < -far || utc > far) return 0;
  const std::time_t moment = floor<seconds>(milliseconds(utc)).count();
  std::tm local{};
  if (!localtime_r(&moment, &local)) return 0;
  return std::int64_t{local.tm_gmtoff} * 1000;
}

std::int64_t localToUtc(std::int64_t wallMilliseconds) {
  constexpr std::int64_t day = 86'400'000;
  const std::int64_t before = localOffset(wallMilliseconds - day);
  const std::int64_t after = localOffset(wallMilliseconds + day);
  const std::int64_t first = wallMilliseconds - before;
  if (before == after || localOffset(first) == before) return first;
  const std::int64_t second = wallMilliseconds - after;
  return localOffset(second) == after ? second : first;
}

}  // namespace hollowmere

#include "connectors/cassandra/casstime.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <string_view>

#include "connectors/cassandra/cassnumber.h"
#include "connectors/localtime.h"
#include "connectors/textpiece.h"

namespace hollowmere {

namespace {

constexpr std::int64_t dayMilliseconds = 86'400'000;
constexpr std::int64_t second = 1'000'000'000;

std::int64_t floorDay(std::int64_t milliseconds) {
  const std::int64_t day = milliseconds / dayMilliseconds;
  return milliseconds % dayMilliseconds < 0 ? day - 1 : day;
}

std::optional<std::string> dateBytes(const TValue& value, const TDateTimeText& dates) {
  std::optional<std::int64_t> moment;
  if (value.is(TKind::DateTime)) moment = value.asMilliseconds();
  if (value.is(TKind::Text)) moment = dates.parse(value.asText());
  if (!moment) return std::nullopt;
  const bool utcMidnight = *moment % dayMilliseconds == 0;
  const std::int64_t day = floorDay(utcMidnight ? *moment : *moment + localOffset(*moment));
  constexpr std::int64_t first = 0x80000000LL;
  if (day < -first || day >= first) return std::nullopt;
  return bigEndianBytes(static_cast<std::uint64_t>(day + first), 4);
}

/// Takes the number at the front of a text; nothing when there is none.
std::optional<std::int64_t> takeNumber(std::string_view& text) {
  std::int64_t number = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || number < 0 || text.starts_with('-')) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
  return number;
}

/// The digits behind the point, up to nine, as nanoseconds.
std::optional<std::int64_t> takeFraction(std::string_view& text) {
  const std::size_t before = text.size();
  const auto number = takeNumber(text);
  if (!number || before - text.size() > 9) return std::nullopt;
  std::int64_t nanoseconds = *number;
  for (std::size_t digits = before - text.size(); digits < 9; ++digits) nanoseconds *= 10;
  return nanoseconds;
}

std::optional<std::int64_t> nanosecondsOf(std::string_view text) {
  std::array<std::int64_t, 3> clock{};
  for (std::size_t i = 0; i < clock.size(); ++i) {
    const auto number = takeNumber(text);
    if (!number || *number > (i == 0 ? 23 : 59)) return std::nullopt;
    clock[i] = *number;
    if (i == 2 || (i == 1 && text.empty())) break;
    if (!text.starts_with(':')) return std::nullopt;
    text.remove_prefix(1);
  }
  std::int64_t nanoseconds = ((clock[0] * 60 + clock[1]) * 60 + clock[2]) * second;
  if (text.starts_with('.')) {
    text.remove_prefix(1);
    const auto fraction = takeFraction(text);
    if (!fraction) return std::nullopt;
    nanoseconds += *fraction;
  }
  return text.empty() ? std::optional(nanoseconds) : std::nullopt;
}

std::optional<std::string> timeBytes(const TValue& value) {
  std::optional<std::int64_t> nanoseconds;
  if (value.is(TKind::Int)) nanoseconds = value.asInt();
  if (value.is(TKind::Text)) nanoseconds = nanosecondsOf(trimmed(value.asText()));
  if (!nanoseconds || *nanoseconds < 0 || *nanoseconds >= 86'400 * second) return std::nullopt;
  return bigEndianBytes(static_cast<std::uint64_t>(*nanoseconds), 8);
}

struct TUnit {
  std::string_view name;
  int part;  ///< 0 months, 1 days, 2 nanoseconds
  std::int64_t size;
};
constexpr std::array<TUnit, 11> units{{{"y", 0, 12},
                                       {"mo", 0, 1},
                                       {"w", 1, 7},
                                       {"d", 1, 1},
                                       {"h", 2, 3600 * second},
                                       {"m", 2, 60 * second},
                                       {"s", 2, second},
                                       {"ms", 2, 1'000'000},
                                       {"us", 2, 1000},
                                       {"\xC2\xB5s", 2, 1000},
                                       {"ns", 2, 1}}};

std::optional<std::string> durationBytes(const TValue& value) {
  if (!value.is(TKind::Text)) return std::nullopt;
  std::string_view text = trimmed(value.asText());
  const bool negative = text.starts_with('-');
  if (negative) text.remove_prefix(1);
  if (text.empty()) return std::nullopt;
  std::array<std::int64_t, 3> parts{};
  while (!text.empty()) {
    const auto number = takeNumber(text);
    if (!number) return std::nullopt;
    const std::size_t end = std::min(text.find_first_of("0123456789"), text.size());
    const auto* unit = std::find_if(units.begin(), units.end(), [&](const TUnit& u) {
      return equalIgnoringCase(u.name, text.substr(0, end));
    });
    if (unit == units.end()) return std::nullopt;
    text.remove_prefix(end);
    std::int64_t& part = parts[static_cast<std::size_t>(unit->part)];
    std::int64_t more = 0;
    if (__builtin_mul_overflow(*number, unit->size, &more) || __builtin_add_overflow(part, more, &part))
      return std::nullopt;
  }
  constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
  if (parts[0] > most || parts[1] > most) return std::nullopt;
  std::string out;
  for (const std::int64_t part : parts) appendVint(out, negative ? -part : part);
  return out;
}

}  // namespace

std::optional<std::string> cassTimeBytes(const TValue& value, TCassType::TBase base,
                                         const TDateTimeText& dates) {
  if (base == TCassType::TBase::Date) return dateBytes(value, dates);
  if (base == TCassType::TBase::Time) return timeBytes(value);
  return durationBytes(value);
}

}  // namespace hollowmere

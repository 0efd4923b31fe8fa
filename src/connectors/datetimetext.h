#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace hollowmere {

/// Reads and writes date-times as people of a locale write them, in the machine's time zone. Immutable;
/// copies share their tables and may be used from any thread.
class TDateTimeText {
 public:
  /// A name as "de_DE"; empty: the user's own settings; "C": plain ISO 8601.
  explicit TDateTimeText(const std::string& localeName = {});

  /// Milliseconds since 1970 UTC when the whole text, blanks around it aside, is a date or a date and a
  /// time: ISO 8601 ("2026-01-02", "2026-01-02T03:04", seconds, up to nine decimals of them, "Z" or an
  /// offset) or the locale's short date, alone or followed by its short or long time or a 24-hour time.
  /// Years may have two digits in the locale's forms: they lie at most 50 years ahead.
  /// Without an offset the time is local. An ISO date alone is midnight UTC, the same moment on every
  /// machine, and so leaves again as that date; a date in the locale's own form is local midnight.
  /// Most texts that are no dates cost a few nanoseconds.
  [[nodiscard]] std::optional<std::int64_t> parse(std::string_view text) const;

  /// The locale's short date, with the whole year, and its long time without the zone's name; seconds have
  /// three decimals unless these are 0. "C" gives "yyyy-MM-dd HH:mm:ss". Digits are 0-9 everywhere.
  /// parse() gives the same moment back, except in the hour that a clock passes twice.
  [[nodiscard]] std::string localText(std::int64_t millisecondsUtc) const;

 private:
  struct TForms;

  std::shared_ptr<const TForms> forms_;
};

/// "yyyy-MM-dd HH:mm:ss.zzz+hhmm": local time and its offset, the same in every locale.
std::string localIsoText(std::int64_t millisecondsUtc);

}  // namespace hollowmere

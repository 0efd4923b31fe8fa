#include "json/encoding.h"

#include <QByteArray>
#include <chrono>
#include <cstdlib>

namespace hollowmere {

std::string toBase64(std::string_view bytes) {
  return QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size())).toBase64().toStdString();
}

std::optional<std::string> fromBase64(std::string_view text) {
  QByteArray compact;
  compact.reserve(static_cast<qsizetype>(text.size()));
  for (const char c : text)
    if (c != ' ' && c != '\t' && c != '\r' && c != '\n') compact += c;
  // The decoder lets a missing end pass.
  if (compact.size() % 4 != 0) return std::nullopt;
  const auto decoded = QByteArray::fromBase64Encoding(compact, QByteArray::AbortOnBase64DecodingErrors);
  if (!decoded) return std::nullopt;
  return decoded.decoded.toStdString();
}

namespace {

/// Writes a number over zeros that end there.
void putDigits(char* end, int number) {
  for (; number > 0; number /= 10) *--end = static_cast<char>('0' + number % 10);
}

}  // namespace

std::string toIsoText(std::int64_t millisecondsUtc) {
  using namespace std::chrono;
  const sys_time<milliseconds> moment{milliseconds(millisecondsUtc)};
  const auto day = floor<days>(moment);
  // Beyond the calendar type's years a date has no usual text at all.
  constexpr auto limit = sys_days{year(32767) / 1 / 1};
  constexpr auto lowest = sys_days{year(-32766) / 1 / 1};
  if (day >= limit || day < lowest) return std::to_string(millisecondsUtc);
  const year_month_day date{day};
  const hh_mm_ss time{moment - day};
  const int years = static_cast<int>(date.year());
  const bool usual = years >= 0 && years <= 9999;
  std::string text = usual       ? "0000-00-00T00:00:00.000Z"
                     : years < 0 ? "-00000-00-00T00:00:00.000Z"
                                 : "+00000-00-00T00:00:00.000Z";
  char* const end = text.data() + text.size();
  putDigits(end - 20, std::abs(years));
  putDigits(end - 17, static_cast<int>(static_cast<unsigned>(date.month())));
  putDigits(end - 14, static_cast<int>(static_cast<unsigned>(date.day())));
  putDigits(end - 11, static_cast<int>(time.hours().count()));
  putDigits(end - 8, static_cast<int>(time.minutes().count()));
  putDigits(end - 5, static_cast<int>(time.seconds().count()));
  putDigits(end - 1, static_cast<int>(time.subseconds().count()));
  return text;
}

}  // namespace hollowmere

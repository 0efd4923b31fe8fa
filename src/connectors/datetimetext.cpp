#include "connectors/datetimetext.h"

#include <QDate>
#include <QLocale>
#include <array>

#include "connectors/datefields.h"
#include "connectors/datepattern.h"
#include "connectors/textpiece.h"

namespace hollowmere {

namespace {

QString usable(const QString& format, const QLocale& locale, bool (TDatePattern::*test)() const,
               const char* otherwise) {
  return (TDatePattern(format, locale).*test)() ? format : QString::fromLatin1(otherwise);
}

QString dateFormat(const QLocale& locale) {
  return usable(locale.dateFormat(QLocale::ShortFormat), locale, &TDatePattern::isDate, "yyyy-MM-dd");
}

QString timeFormat(const QLocale& locale, QLocale::FormatType type) {
  return usable(locale.timeFormat(type), locale, &TDatePattern::isTime, "HH:mm:ss");
}

QLocale localeNamed(const std::string& name) {
  return name.empty() ? QLocale::system() : QLocale(QString::fromStdString(name));
}

bool isPlainForm(const QLocale& locale) { return locale.language() == QLocale::C; }

char32_t zeroOf(const QLocale& locale) {
  const auto zero = locale.zeroDigit().toStdU32String();
  return zero.empty() ? U'0' : zero.front();
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool readMark(std::string_view& text, char mark) {
  if (text.empty() || text.front() != mark) return false;
  text.remove_prefix(1);
  return true;
}

bool readTwoDigits(std::string_view& text, int& number) {
  number = readDigits(text, 2, 2);
  return number >= 0;
}

bool readIsoDate(std::string_view& text, TDateParts& parts) {
  if (!readSignedYear(text, parts.year)) {
    parts.year = readDigits(text, 4, 4);
    if (parts.year < 0) return false;
  }
  return readMark(text, '-') && readTwoDigits(text, parts.month) && readMark(text, '-') &&
         readTwoDigits(text, parts.day);
}

bool readIsoTime(std::string_view& text, TDateParts& parts) {
  if (!readTwoDigits(text, parts.hour) || !readMark(text, ':') || !readTwoDigits(text, parts.minute))
    return false;
  if (!readMark(text, ':')) return true;
  return readTwoDigits(text, parts.second) && readFraction(text, parts.millisecond);
}

/// The offset that the rest of the text says; false when the rest is something else.
bool readOffset(std::string_view text, std::int64_t& offset) {
  const bool behind = text.front() == '-';
  if (!behind && text.front() != '+') return false;
  text.remove_prefix(1);
  int hours = 0, minutes = 0;
  if (!readTwoDigits(text, hours) || hours > 23) return false;
  if (!text.empty()) {
    readMark(text, ':');
    if (!readTwoDigits(text, minutes) || minutes > 59 || !text.empty()) return false;
  }
  offset = (behind ? -1 : 1) * (hours * 60 + minutes) * std::int64_t{60'000};
  return true;
}

std::optional<std::int64_t> parseIso(std::string_view text) {
  TDateParts parts;
  if (!readIsoDate(text, parts)) return std::nullopt;
  const bool dateOnly = text.empty();
  if (!dateOnly && ((!readMark(text, 'T') && !readMark(text, ' ')) || !readIsoTime(text, parts)))
    return std::nullopt;
  const auto wall = wallMilliseconds(parts);
  if (!wall || dateOnly || text == "Z" || text == "z") return wall;
  if (text.empty()) return localToUtc(*wall);
  std::int64_t offset = 0;
  if (!readOffset(text, offset)) return std::nullopt;
  return *wall - offset;
}

}  // namespace

struct TDateTimeText::TForms {
  explicit TForms(const QLocale& locale);

  [[nodiscard]] bool mayBeDate(std::string_view text) const;
  [[nodiscard]] std::optional<std::int64_t> parseLocal(std::string_view text) const;

  TDatePattern date;
  std::array<TDatePattern, 4> times;
  TDatePattern writtenDate;
  TDatePattern writtenTime;
  TDatePattern::TByteSet first;
  TDatePattern::TByteSet afterNumber;
  char32_t zero;
  int thisYear = QDate::currentDate().year();
};

TDateTimeText::TForms::TForms(const QLocale& locale)
    : date(dateFormat(locale), locale),
      times{TDatePattern(timeFormat(locale, QLocale::LongFormat), locale),
            TDatePattern(timeFormat(locale, QLocale::ShortFormat), locale),
            TDatePattern(QStringLiteral("HH:mm:ss"), locale), TDatePattern(QStringLiteral("HH:mm"), locale)},
      writtenDate(isPlainForm(locale) ? QStringLiteral("yyyy-MM-dd") : dateFormat(locale), locale),
      writtenTime(times[0].hasSeconds() && !isPlainForm(locale) ? times[0] : times[2]),
      first(date.firstBytes()),
      afterNumber(date.bytesAfterNumber()),
      zero(zeroOf(locale)) {
  for (const char c : std::string_view("+-0123456789")) first.set(static_cast<unsigned char>(c));
  afterNumber.set('-');
  // Other digits, and marks of writing direction between numbers, begin beyond ASCII.
  for (std::size_t byte = 0x80; byte < 0x100; ++byte) {
    if (zero != U'0') first.set(byte);
    afterNumber.set(byte);
  }
}

/// A quick look that sends nearly every ordinary text away.
bool TDateTimeText::TForms::mayBeDate(std::string_view text) const {
  constexpr std::size_t shortest = 6, longest = 128;
  if (text.size() < shortest || text.size() > longest || !first[static_cast<unsigned char>(text[0])])
    return false;
  // A year with a sign has five digits at least; telephone numbers do not.
  if (text[0] == '+' || text[0] == '-') return isDigit(text[1]) && isDigit(text[3]) && isDigit(text[5]);
  if (!isDigit(text[0])) return true;
  std::size_t at = 1;
  while (at < shortest - 1 && isDigit(text[at])) ++at;
  return afterNumber[static_cast<unsigned char>(text[at])];
}

std::optional<std::int64_t> TDateTimeText::TForms::parseLocal(std::string_view text) const {
  TDateParts parts;
  if (!date.read(text, parts, thisYear)) return std::nullopt;
  if (!text.empty()) {
    const std::size_t before = text.size();
    readMark(text, ',');
    while (readMark(text, ' ')) {
    }
    if (text.size() == before) return std::nullopt;
    const auto whole = [&](const TDatePattern& time) {
      std::string_view rest = text;
      TDateParts attempt = parts;
      if (!time.read(rest, attempt, thisYear) || !rest.empty()) return false;
      parts = attempt;
      return true;
    };
    if (!whole(times[0]) && !whole(times[1]) && !whole(times[2]) && !whole(times[3])) return std::nullopt;
  }
  const auto wall = wallMilliseconds(parts);
  if (!wall) return std::nullopt;
  return localToUtc(*wall);
}

TDateTimeText::TDateTimeText(const std::string& localeName)
    : forms_(std::make_shared<const TForms>(localeNamed(localeName))) {}

std::optional<std::int64_t> TDateTimeText::parse(std::string_view text) const {
  text = trimmed(text);
  if (!forms_->mayBeDate(text)) return std::nullopt;
  for (const char c : text)
    if (static_cast<unsigned char>(c) >= 0x80) {
      const std::string plainText = plainBlanksAndDigits(text, forms_->zero);
      const auto iso = parseIso(plainText);
      return iso ? iso : forms_->parseLocal(plainText);
    }
  const auto iso = parseIso(text);
  return iso ? iso : forms_->parseLocal(text);
}

std::string TDateTimeText::localText(std::int64_t millisecondsUtc) const {
  const auto parts = wallParts(millisecondsUtc + localOffset(millisecondsUtc));
  // A calendar has no use for such a date.
  if (!parts) return std::to_string(millisecondsUtc);
  std::string text;
  text.reserve(32);
  forms_->writtenDate.write(text, *parts);
  text += ' ';
  forms_->writtenTime.write(text, *parts);
  return text;
}

std::string localIsoText(std::int64_t millisecondsUtc) {
  constexpr std::int64_t minute = 60'000;
  // Offsets before standard time have seconds, which the form cannot say.
  const std::int64_t minutes = localOffset(millisecondsUtc) / minute;
  const auto parts = wallParts(millisecondsUtc + minutes * minute);
  if (!parts) return std::to_string(millisecondsUtc);
  std::string text;
  appendYear(text, parts->year);
  appendPadded(text += '-', parts->month, 2);
  appendPadded(text += '-', parts->day, 2);
  appendPadded(text += ' ', parts->hour, 2);
  appendPadded(text += ':', parts->minute, 2);
  appendPadded(text += ':', parts->second, 2);
  appendPadded(text += '.', parts->millisecond, 3);
  const int ahead = static_cast<int>(minutes);
  appendPadded(text += ahead < 0 ? '-' : '+', std::abs(ahead) / 60 * 100 + std::abs(ahead) % 60, 4);
  return text;
}

}  // namespace hollowmere

#include "connectors/datepattern.h"

#include <QString>
#include <algorithm>

#include "connectors/datefields.h"
#include "json/value.h"

namespace hollowmere {

namespace {

bool startsWithIgnoringCase(std::string_view text, std::string_view start) {
  constexpr int caseBit = 0x20;
  if (start.empty() || text.size() < start.size() || ((text.front() ^ start.front()) & ~caseBit) != 0)
    return false;
  return equalIgnoringCase(text.substr(0, start.size()), start);
}

bool skipBlanks(std::string_view& text) {
  const std::size_t from = std::min(text.find_first_not_of(' '), text.size());
  text.remove_prefix(from);
  return from > 0;
}

bool readLiteral(std::string_view& text, std::string_view literal, bool blankOptional) {
  for (const char c : literal) {
    if (c == ' ') {
      if (!skipBlanks(text) && !blankOptional) return false;
    } else if (!text.empty() && text.front() == c) {
      text.remove_prefix(1);
    } else {
      return false;
    }
  }
  return true;
}

/// The number of the longest name with which the text begins, or -1.
template <std::size_t N>
int readName(std::string_view& text, const std::array<std::vector<std::string>, N>& names) {
  int found = -1;
  std::size_t length = 0;
  for (std::size_t i = 0; i < N; ++i)
    for (const std::string& name : names[i])
      if (name.size() > length && startsWithIgnoringCase(text, name)) {
        found = static_cast<int>(i);
        length = name.size();
      }
  text.remove_prefix(length);
  return found;
}

int slidingYear(int twoDigits, int thisYear) {
  int year = thisYear / 100 * 100 + twoDigits;
  if (year > thisYear + 50) year -= 100;
  if (year <= thisYear - 50) year += 100;
  return year;
}

bool readYear(std::string_view& text, int& year, int thisYear) {
  if (readSignedYear(text, year)) return true;
  const std::size_t before = text.size();
  const int number = readDigits(text, 2, 4);
  const std::size_t digits = before - text.size();
  if (number < 0 || digits == 3) return false;
  year = digits == 2 ? slidingYear(number, thisYear) : number;
  return true;
}

bool readInto(std::string_view& text, int least, int& number) {
  number = readDigits(text, least, 2);
  return number >= 0;
}

std::string plain(const QString& text) { return plainBlanksAndDigits(text.toStdString(), U'0'); }

}  // namespace

TDatePattern::TDatePattern(const QString& format, const QLocale& locale) {
  compile(format);
  trimEnds();
  finish();
  readNames(locale);
}

TDatePattern::TField TDatePattern::fieldOf(QChar letter, int length) {
  switch (letter.unicode()) {
    case u'd': return length <= 2 ? TField::Day : TField::Unsupported;
    case u'M': return length <= 2 ? TField::Month : TField::MonthName;
    case u'y': return length == 2 || length == 4 ? TField::Year : TField::Unsupported;
    case u'H': return TField::Hour;
    case u'h': return TField::Hour12;
    case u'm': return TField::Minute;
    case u's': return TField::Second;
    case u'A':
    case u'a': return TField::HalfDay;
    default: return TField::Literal;
  }
}

void TDatePattern::compile(const QString& format) {
  for (qsizetype i = 0; i < format.size();) {
    const QChar c = format[i];
    if (c == u'\'') {
      const qsizetype end = format.indexOf(u'\'', i + 1);
      const qsizetype stop = end < 0 ? format.size() : end;
      addLiteral(stop == i + 1 ? QStringLiteral("'") : format.mid(i + 1, stop - i - 1));
      i = stop + 1;
      continue;
    }
    qsizetype next = i + 1;
    while (next < format.size() && format[next] == c) ++next;
    const TField field = fieldOf(c, static_cast<int>(next - i));
    if (field == TField::HalfDay && next < format.size() && format[next].toLower() == u'p') ++next;
    if (field != TField::Literal)
      tokens_.push_back({field, static_cast<int>(next - i), false, {}});
    else if (c != u't' && c != u'B')  // the zone's name, and parts of the day, are not written
      addLiteral(format.mid(i, next - i));
    i = next;
  }
}

void TDatePattern::addLiteral(const QString& text) {
  if (tokens_.empty() || tokens_.back().field != TField::Literal)
    tokens_.push_back({TField::Literal, 1, false, {}});
  tokens_.back().text += plain(text);
}

/// Takes away what stood around the zone's name.
void TDatePattern::trimEnds() {
  constexpr const char* marks = " ,()[]";
  if (!tokens_.empty() && tokens_.back().field == TField::Literal) {
    std::string& text = tokens_.back().text;
    text.erase(text.find_last_not_of(marks) + 1);
    if (text.empty()) tokens_.pop_back();
  }
  if (!tokens_.empty() && tokens_.front().field == TField::Literal) {
    std::string& text = tokens_.front().text;
    text.erase(0, text.find_first_not_of(marks));
    if (text.empty()) tokens_.erase(tokens_.begin());
  }
}

void TDatePattern::finish() {
  const bool halves = count(TField::HalfDay) > 0;
  for (std::size_t i = 0; i < tokens_.size(); ++i) {
    TToken& token = tokens_[i];
    // Without a half of the day, h counts to 23.
    if (token.field == TField::Hour12 && !halves) token.field = TField::Hour;
    if (token.field != TField::Literal) continue;
    token.blankOptional = token.text.find_first_not_of(' ') != std::string::npos ||
                          (i > 0 && tokens_[i - 1].field == TField::HalfDay) ||
                          (i + 1 < tokens_.size() && tokens_[i + 1].field == TField::HalfDay);
  }
}

void TDatePattern::readNames(const QLocale& locale) {
  const bool full = std::any_of(tokens_.begin(), tokens_.end(), [](const TToken& token) {
    return token.field == TField::MonthName && token.width > 3;
  });
  const auto wide = full ? QLocale::LongFormat : QLocale::ShortFormat;
  const auto other = full ? QLocale::ShortFormat : QLocale::LongFormat;
  for (int month = 1; month <= 12; ++month)
    monthNames_[static_cast<std::size_t>(month - 1)] = {plain(locale.monthName(month, wide)),
                                                        plain(locale.monthName(month, other))};
  // Written in capitals as the AP of a format asks; a reader may meet either case.
  halfDays_[0] = {plain(locale.amText().toUpper()), plain(locale.amText()), "AM"};
  halfDays_[1] = {plain(locale.pmText().toUpper()), plain(locale.pmText()), "PM"};
}

int TDatePattern::count(TField field) const {
  return static_cast<int>(std::count_if(tokens_.begin(), tokens_.end(),
                                        [field](const TToken& token) { return token.field == field; }));
}

bool TDatePattern::numbersApart() const {
  const auto isNumber = [](const TToken& token) {
    return token.field != TField::Literal && token.field != TField::HalfDay &&
           token.field != TField::MonthName;
  };
  return std::adjacent_find(tokens_.begin(), tokens_.end(), [&](const TToken& a, const TToken& b) {
           return isNumber(a) && isNumber(b);
         }) == tokens_.end();
}

bool TDatePattern::isDate() const {
  return count(TField::Day) == 1 && count(TField::Month) + count(TField::MonthName) == 1 &&
         count(TField::Year) == 1 && count(TField::Unsupported) == 0 && numbersApart();
}

bool TDatePattern::isTime() const {
  return count(TField::Hour) + count(TField::Hour12) == 1 && count(TField::Minute) == 1 &&
         count(TField::Second) <= 1 && count(TField::HalfDay) <= 1 && count(TField::Unsupported) == 0 &&
         numbersApart();
}

bool TDatePattern::readToken(const TToken& token, std::string_view& text, TDateParts& parts, int thisYear,
                             bool& pm) const {
  const int least = token.width >= 2 ? 2 : 1;
  switch (token.field) {
    case TField::Literal: return readLiteral(text, token.text, token.blankOptional);
    case TField::Day: return readInto(text, 1, parts.day);
    case TField::Month: return readInto(text, 1, parts.month);
    case TField::MonthName: return (parts.month = readName(text, monthNames_) + 1) > 0;
    case TField::Year: return readYear(text, parts.year, thisYear);
    case TField::Hour: return readInto(text, 1, parts.hour);
    case TField::Hour12: return readInto(text, 1, parts.hour) && parts.hour >= 1 && parts.hour <= 12;
    case TField::Minute: return readInto(text, least, parts.minute);
    case TField::Second: return readInto(text, least, parts.second) && readFraction(text, parts.millisecond);
    case TField::HalfDay: {
      const int half = readName(text, halfDays_);
      pm = half == 1;
      return half >= 0;
    }
    case TField::Unsupported: break;
  }
  return false;
}

bool TDatePattern::read(std::string_view& text, TDateParts& parts, int thisYear) const {
  bool pm = false;
  for (std::size_t i = 0; i < tokens_.size(); ++i) {
    const std::string_view before = text;
    if (readToken(tokens_[i], text, parts, thisYear, pm)) continue;
    if (i == 0 || i + 1 < tokens_.size() || tokens_[i].field != TField::Literal) return false;
    text = before;
  }
  if (count(TField::Hour12) > 0) parts.hour = parts.hour % 12 + (pm ? 12 : 0);
  return true;
}

void TDatePattern::write(std::string& out, const TDateParts& parts) const {
  for (const TToken& token : tokens_) {
    const int width = std::min(token.width, 2);
    switch (token.field) {
      case TField::Literal: out += token.text; break;
      case TField::Day: appendPadded(out, parts.day, width); break;
      case TField::Month: appendPadded(out, parts.month, width); break;
      case TField::MonthName: out += monthNames_[static_cast<std::size_t>(parts.month - 1)].front(); break;
      case TField::Year: appendYear(out, parts.year); break;
      case TField::Hour: appendPadded(out, parts.hour, width); break;
      case TField::Hour12: appendPadded(out, (parts.hour + 11) % 12 + 1, width); break;
      case TField::Minute: appendPadded(out, parts.minute, width); break;
      case TField::Second:
        appendPadded(out, parts.second, width);
        if (parts.millisecond != 0) appendPadded(out += '.', parts.millisecond, 3);
        break;
      case TField::HalfDay: out += halfDays_[parts.hour >= 12 ? 1 : 0].front(); break;
      case TField::Unsupported: break;
    }
  }
}

TDatePattern::TByteSet TDatePattern::firstBytes() const {
  TByteSet bytes;
  const auto add = [&bytes](const std::string& text) {
    if (text.empty()) return;
    bytes.set(static_cast<unsigned char>(text.front()));
    bytes.set(static_cast<unsigned char>(text.front() ^ 0x20));  // the other case of a letter
  };
  if (tokens_.empty()) return bytes;
  if (tokens_.front().field == TField::Literal) add(tokens_.front().text);
  if (tokens_.front().field == TField::MonthName)
    for (const TNames& names : monthNames_)
      for (const std::string& name : names) add(name);
  return bytes;
}

TDatePattern::TByteSet TDatePattern::bytesAfterNumber() const {
  TByteSet bytes;
  if (tokens_.size() < 2 || tokens_[1].field != TField::Literal) return bytes.set();
  for (const char c : tokens_[1].text) {
    bytes.set(static_cast<unsigned char>(c));
    if (c != ' ') break;
  }
  return bytes;
}

}  // namespace hollowmere

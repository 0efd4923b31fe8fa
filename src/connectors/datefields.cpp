#include "connectors/datefields.h"

#include <QString>
#include <cstdint>
#include <cstdlib>

namespace hollowmere {

std::string plainBlanksAndDigits(std::string_view text, char32_t zero) {
  constexpr char32_t narrowBlank = 0x202F, hardBlank = 0x00A0, leftMark = 0x200E, rightMark = 0x200F;
  QString plainText;
  for (const char32_t c :
       QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())).toStdU32String()) {
    if (c == leftMark || c == rightMark) continue;
    if (c >= zero && c < zero + 10)
      plainText += QChar(u'0' + static_cast<char16_t>(c - zero));
    else
      plainText += c == narrowBlank || c == hardBlank ? QStringLiteral(" ") : QString::fromUcs4(&c, 1);
  }
  return plainText.toStdString();
}

int readDigits(std::string_view& text, int least, int most) {
  int number = 0, digits = 0;
  while (digits < most && static_cast<std::size_t>(digits) < text.size()) {
    const char c = text[static_cast<std::size_t>(digits)];
    if (c < '0' || c > '9') break;
    number = number * 10 + (c - '0');
    ++digits;
  }
  if (digits < least) return -1;
  text.remove_prefix(static_cast<std::size_t>(digits));
  return number;
}

bool readFraction(std::string_view& text, int& milliseconds) {
  milliseconds = 0;
  if (text.empty() || (text.front() != '.' && text.front() != ',')) return true;
  std::string_view digits = text.substr(1);
  const std::size_t before = digits.size();
  const int number = readDigits(digits, 1, 9);
  if (number < 0) return false;
  std::int64_t nanoseconds = number;
  for (std::size_t places = before - digits.size(); places < 9; ++places) nanoseconds *= 10;
  milliseconds = static_cast<int>(nanoseconds / 1'000'000);
  text = digits;
  return true;
}

void appendPadded(std::string& out, int number, int width) {
  char digits[12];
  char* const end = digits + sizeof digits;
  char* at = end;
  do {
    *--at = static_cast<char>('0' + number % 10);
    number /= 10;
  } while (number > 0);
  while (end - at < width) *--at = '0';
  out.append(at, end);
}

void appendYear(std::string& out, int year) {
  if (year >= 0 && year <= 9999) return appendPadded(out, year, 4);
  out += year < 0 ? '-' : '+';
  appendPadded(out, std::abs(year), 5);
}

bool readSignedYear(std::string_view& text, int& year) {
  if (text.empty() || (text.front() != '+' && text.front() != '-')) return false;
  std::string_view digits = text.substr(1);
  const int number = readDigits(digits, 5, 6);
  if (number < 0) return false;
  year = text.front() == '-' ? -number : number;
  text = digits;
  return true;
}

}  // namespace hollowmere

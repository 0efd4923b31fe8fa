#include "sqlmongo/shelltext.h"

#include <algorithm>
#include <cctype>

#include "json/json.h"

namespace hollowmere {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::size_t digitsFrom(std::string_view text, std::size_t at) {
  while (at < text.size() && isDigit(text[at])) ++at;
  return at;
}

/// ".5", "5", "5.", "5.5", and the exponent behind it; nothing when it is none of them.
std::optional<std::string> unsignedNumber(std::string_view text) {
  const std::size_t whole = digitsFrom(text, 0);
  std::size_t at = whole;
  std::string_view fraction;
  if (at < text.size() && text[at] == '.') {
    at = digitsFrom(text, whole + 1);
    fraction = text.substr(whole + 1, at - whole - 1);
  }
  if (whole == 0 && fraction.empty()) return std::nullopt;
  const std::string_view exponent = text.substr(at);
  if (!exponent.empty()) {
    if ((exponent[0] | 0x20) != 'e') return std::nullopt;
    const std::size_t sign = exponent.size() > 1 && (exponent[1] == '-' || exponent[1] == '+') ? 2 : 1;
    if (sign == exponent.size() || digitsFrom(exponent, sign) != exponent.size()) return std::nullopt;
  }
  const std::size_t zeros = std::min(text.find_first_not_of('0'), whole);
  std::string out(text.substr(zeros, whole - zeros));
  if (out.empty()) out = "0";
  if (!fraction.empty()) out.append(".").append(fraction);
  return out.append(exponent);
}

}  // namespace

std::optional<std::string> numberText(const TSqlToken& token) {
  if (token.kind != TSqlTokenKind::Word) return std::nullopt;
  std::string_view text = token.text;
  const bool negative = text.front() == '-';
  if (negative || text.front() == '+') text.remove_prefix(1);
  auto number = unsignedNumber(text);
  if (number && negative) number->insert(0, 1, '-');
  return number;
}

std::string quotedText(std::string_view text) {
  std::string out = toJson(TValue(text));
  // Two characters that JSON allows end a line in older JavaScript.
  for (std::size_t at = out.find("\xE2\x80"); at != std::string::npos; at = out.find("\xE2\x80", at + 1))
    if (const char last = out[at + 2]; last == '\xA8' || last == '\xA9')
      out.replace(at, 3, last == '\xA8' ? "\\u2028" : "\\u2029");
  return out;
}

bool isIdentifier(std::string_view name) {
  return !name.empty() && !isDigit(name.front()) && std::all_of(name.begin(), name.end(), [](char c) {
    return isDigit(c) || ((c | 0x20) >= 'a' && (c | 0x20) <= 'z') || c == '_' || c == '$';
  });
}

bool isIdentifierPath(std::string_view name) {
  for (std::size_t dot = name.find('.'); dot != std::string_view::npos; dot = name.find('.')) {
    if (!isIdentifier(name.substr(0, dot))) return false;
    name.remove_prefix(dot + 1);
  }
  return isIdentifier(name);
}

std::string bareKey(std::string_view name) {
  return isIdentifier(name) ? std::string(name) : quotedText(name);
}

std::string memberOf(std::string_view object, std::string_view name) {
  std::string out(object);
  return isIdentifierPath(name) ? out + "." + std::string(name) : out + "[" + quotedText(name) + "]";
}

bool isObjectId(std::string_view text) {
  return text.size() == 24 &&
         std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isxdigit(c) != 0; });
}

void appendRegexCharacter(std::string& out, char c, std::string_view escaped) {
  if (c == '\n') {
    out += "\\n";
  } else if (c == '\r') {
    out += "\\r";
  } else {
    if (escaped.find(c) != std::string_view::npos) out += '\\';
    out += c;
  }
}

}  // namespace hollowmere

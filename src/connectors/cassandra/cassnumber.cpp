#include "connectors/cassandra/cassnumber.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <vector>

namespace hollowmere {

namespace {

/// Digits beyond these are no number that anybody keeps.
constexpr std::size_t mostDigits = 100'000;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Takes the digits at the front.
std::string_view takeDigits(std::string_view& text) {
  const auto end = std::find_if_not(text.begin(), text.end(), isDigit);
  const std::string_view digits = text.substr(0, static_cast<std::size_t>(end - text.begin()));
  text.remove_prefix(digits.size());
  return digits;
}

/// The exponent behind "e"; 0 for no text, nothing when it is none.
std::optional<std::int32_t> exponentOf(std::string_view text) {
  if (text.empty()) return 0;
  if ((text.front() | 0x20) != 'e') return std::nullopt;
  text.remove_prefix(1);
  if (text.starts_with('+')) text.remove_prefix(1);
  std::int32_t exponent = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), exponent);
  if (text.empty() || error != std::errc() || stop != text.data() + text.size()) return std::nullopt;
  return exponent > 1'000'000 || exponent < -1'000'000 ? std::nullopt : std::optional(exponent);
}

}  // namespace

void appendBigEndian(std::string& out, std::uint64_t number, int bytes) {
  for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8) out += static_cast<char>(number >> shift & 0xFF);
}

std::string bigEndianBytes(std::uint64_t number, int bytes) {
  std::string out;
  appendBigEndian(out, number, bytes);
  return out;
}

std::optional<TPlainNumber> parseNumber(std::string_view text) {
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  const std::string_view whole = takeDigits(text);
  std::string_view fraction;
  if (text.starts_with('.')) {
    text.remove_prefix(1);
    fraction = takeDigits(text);
  }
  const auto exponent = exponentOf(text);
  const std::size_t count = whole.size() + fraction.size();
  if (count == 0 || count > mostDigits || !exponent) return std::nullopt;
  TPlainNumber number;
  number.digits = std::string(whole) + std::string(fraction);
  number.scale = static_cast<std::int32_t>(fraction.size()) - *exponent;
  number.digits.erase(0, std::min(number.digits.find_first_not_of('0'), number.digits.size() - 1));
  if (negative && number.digits != "0") number.digits.insert(0, 1, '-');
  return number;
}

std::optional<std::string> TPlainNumber::integer() const {
  if (scale == 0 || digits == "0") return digits;
  if (scale < 0) {
    if (-scale > static_cast<std::int32_t>(mostDigits)) return std::nullopt;
    return digits + std::string(static_cast<std::size_t>(-scale), '0');
  }
  const std::size_t cut = static_cast<std::size_t>(scale);
  const std::size_t sign = digits.front() == '-' ? 1 : 0;
  if (digits.size() - sign <= cut) return std::nullopt;
  if (digits.find_first_not_of('0', digits.size() - cut) != std::string::npos) return std::nullopt;
  return digits.substr(0, digits.size() - cut);
}

std::string varintBytes(std::int64_t number) {
  int bytes = 8;
  // As long as the next byte says the same sign, the first is needless.
  for (; bytes > 1; --bytes) {
    const std::int64_t shorter = number << (64 - 8 * (bytes - 1)) >> (64 - 8 * (bytes - 1));
    if (shorter != number) break;
  }
  return bigEndianBytes(static_cast<std::uint64_t>(number), bytes);
}

std::string varintBytes(std::string_view digits) {
  std::int64_t small = 0;
  const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), small);
  if (error == std::errc() && stop == digits.data() + digits.size()) return varintBytes(small);
  const bool negative = digits.starts_with('-');
  if (negative) digits.remove_prefix(1);
  // Little-endian words of 32 bits; nine digits at a time.
  std::vector<std::uint32_t> words;
  for (std::size_t at = 0; at < digits.size();) {
    const std::size_t count = std::min<std::size_t>(9, digits.size() - at);
    std::uint64_t carry = 0, factor = 1;
    for (std::size_t i = 0; i < count; ++i) {
      carry = carry * 10 + static_cast<std::uint64_t>(digits[at + i] - '0');
      factor *= 10;
    }
    for (std::uint32_t& word : words) {
      carry += word * factor;
      word = static_cast<std::uint32_t>(carry);
      carry >>= 32;
    }
    if (carry > 0) words.push_back(static_cast<std::uint32_t>(carry));
    at += count;
  }
  if (negative) {
    std::uint64_t carry = 1;
    for (std::uint32_t& word : words) {
      carry += static_cast<std::uint32_t>(~word);
      word = static_cast<std::uint32_t>(carry);
      carry >>= 32;
    }
  }
  std::string out(1, negative ? '\xFF' : '\0');
  for (auto word = words.rbegin(); word != words.rend(); ++word) appendBigEndian(out, *word, 4);
  while (out.size() > 1 &&
         ((out[0] == '\0' && (out[1] & 0x80) == 0) || (out[0] == '\xFF' && (out[1] & 0x80) != 0)))
    out.erase(0, 1);
  return out;
}

void appendVint(std::string& out, std::int64_t number) {
  const std::uint64_t zigzag =
      static_cast<std::uint64_t>(number) << 1 ^ static_cast<std::uint64_t>(number >> 63);
  const auto bits = static_cast<int>(std::bit_width(zigzag));
  const int extra = bits > 56 ? 8 : std::max(0, (bits - 1) / 7);
  if (extra == 8) {
    out += '\xFF';
    return appendBigEndian(out, zigzag, 8);
  }
  const std::uint64_t ones = static_cast<std::uint64_t>(0xFF00U >> extra & 0xFFU) << (8 * extra);
  appendBigEndian(out, ones | zigzag, extra + 1);
}

}  // namespace hollowmere

#include "connectors/cassandranumber.h"

#include <bit>
#include <stdexcept>
#include <string>
#include <vector>

namespace hollowmere {

namespace {

/// Of 100,000 digits, beyond which no number is written, either.
constexpr std::size_t mostIntegerBytes = 41'525;

bool isNegative(std::string_view bytes) { return !bytes.empty() && (bytes.front() & 0x80) != 0; }

/// No byte in front that only repeats the sign.
bool isShortest(std::string_view integer) {
  if (integer.size() < 2) return !integer.empty();
  const auto first = static_cast<unsigned char>(integer[0]);
  const bool nextNegative = (integer[1] & 0x80) != 0;
  return !(first == 0x00 && !nextNegative) && !(first == 0xFF && nextNegative);
}

/// The size of the integer in digits of base 1e9, the lowest first.
std::vector<std::uint32_t> magnitude(std::string_view bytes) {
  constexpr std::uint64_t base = 1'000'000'000;
  const bool negative = isNegative(bytes);
  std::vector<std::uint32_t> limbs;
  std::uint64_t carry = 0;
  const auto multiplyAndAdd = [&](std::uint64_t factor, std::uint64_t addend) {
    carry = addend;
    for (std::uint32_t& limb : limbs) {
      carry += limb * factor;
      limb = static_cast<std::uint32_t>(carry % base);
      carry /= base;
    }
    for (; carry > 0; carry /= base) limbs.push_back(static_cast<std::uint32_t>(carry % base));
  };
  const auto digit = [&](char c) {
    return static_cast<std::uint64_t>(static_cast<unsigned char>(negative ? ~c : c));
  };
  std::size_t at = 0;
  for (; at < bytes.size() % 4; ++at) multiplyAndAdd(256, digit(bytes[at]));
  for (; at < bytes.size(); at += 4)
    multiplyAndAdd(std::uint64_t{1} << 32, digit(bytes[at]) << 24 | digit(bytes[at + 1]) << 16 |
                                               digit(bytes[at + 2]) << 8 | digit(bytes[at + 3]));
  if (negative) multiplyAndAdd(1, 1);
  return limbs;
}

}  // namespace

std::int64_t bigEndian(std::string_view bytes) {
  std::uint64_t number = isNegative(bytes) ? ~std::uint64_t{0} : 0;
  for (const char c : bytes) number = number << 8 | static_cast<unsigned char>(c);
  return static_cast<std::int64_t>(number);
}

std::string varintText(std::string_view bytes) {
  if (bytes.size() <= sizeof(std::int64_t)) return std::to_string(bigEndian(bytes));
  if (bytes.size() > mostIntegerBytes)
    throw std::runtime_error("cannot read a Cassandra integer of " + std::to_string(bytes.size()) +
                             " bytes: it has more than 100,000 digits");
  std::string text = isNegative(bytes) ? "-" : "";
  const std::vector<std::uint32_t> limbs = magnitude(bytes);
  if (limbs.empty()) return "0";
  text += std::to_string(limbs.back());
  for (std::size_t i = limbs.size() - 1; i-- > 0;) {
    const std::string digits = std::to_string(limbs[i]);
    text.append(9 - digits.size(), '0').append(digits);
  }
  return text;
}

std::string decimalText(std::string digits, std::int64_t scale) {
  constexpr std::int64_t most = 100;
  if (scale == 0) return digits;
  if (scale > most || scale < -most) return digits + 'E' + (scale < 0 ? "+" : "") + std::to_string(-scale);
  if (scale < 0) return digits == "0" ? digits : digits.append(static_cast<std::size_t>(-scale), '0');
  const std::size_t places = static_cast<std::size_t>(scale), sign = digits.front() == '-' ? 1 : 0;
  if (digits.size() - sign <= places) digits.insert(sign, places + 1 - (digits.size() - sign), '0');
  return digits.insert(digits.size() - places, ".");
}

bool isServerDecimal(std::string_view bytes) {
  constexpr std::size_t scaleBytes = 4;
  if (bytes.size() <= scaleBytes) return false;
  // Of 8 bytes the first four would be the high half of an integer that was stored as it is; the scale of
  // a number that people keep is small.
  constexpr std::int64_t usual = 38;
  const std::int64_t scale = bigEndian(bytes.substr(0, scaleBytes));
  if (bytes.size() != 8) return true;
  return scale >= -usual && scale <= usual && isShortest(bytes.substr(scaleBytes));
}

std::optional<std::int64_t> takeVint(std::string_view& bytes) {
  if (bytes.empty()) return std::nullopt;
  const auto first = static_cast<unsigned char>(bytes.front());
  const auto extra = static_cast<std::size_t>(std::countl_one(first));
  if (bytes.size() < extra + 1) return std::nullopt;
  std::uint64_t zigzag = extra >= 7 ? 0 : first & (0xFFU >> (extra + 1));
  for (std::size_t i = 1; i <= extra; ++i) zigzag = zigzag << 8 | static_cast<unsigned char>(bytes[i]);
  bytes.remove_prefix(extra + 1);
  return static_cast<std::int64_t>(zigzag >> 1 ^ (~(zigzag & 1) + 1));
}

}  // namespace hollowmere

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace hollowmere {

/// The low bytes of a number, big-endian.
void appendBigEndian(std::string& out, std::uint64_t number, int bytes);
std::string bigEndianBytes(std::uint64_t number, int bytes);

/// A number of any size as an integer and a scale: value = digits x 10^(-scale).
struct TPlainNumber {
  std::string digits;  ///< with a leading "-" when negative; no needless zeros
  std::int32_t scale = 0;

  /// The digits when the value has no fraction; nothing when it has one, or is absurdly large.
  [[nodiscard]] std::optional<std::string> integer() const;
};
/// Of "-12.50e3" and the like; nothing when the text is no number.
std::optional<TPlainNumber> parseNumber(std::string_view text);

/// The shortest big-endian two's-complement form of decimal digits, at least one byte.
std::string varintBytes(std::string_view digits);
std::string varintBytes(std::int64_t number);

/// An integer as durations hold it: zig-zag, the length in the first byte's leading ones.
void appendVint(std::string& out, std::int64_t number);

}  // namespace hollowmere

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace hollowmere {

/// A big-endian two's-complement integer of up to 8 bytes.
std::int64_t bigEndian(std::string_view bytes);

/// The digits of a big-endian two's-complement integer; "0" for no bytes. Throws std::runtime_error for one
/// of more than 100,000 digits.
std::string varintText(std::string_view bytes);

/// A number of decimal digits with its point scale places from the right. Beyond 100 places or appended
/// zeros with an exponent.
std::string decimalText(std::string digits, std::int64_t scale);

/// Whether 4 bytes of scale and a shortest integer are what a server makes of a number.
bool isServerDecimal(std::string_view bytes);

/// Takes an integer of a duration (zig-zag, its length in the first byte's leading ones) from the front of
/// the bytes; nothing when they end before it does.
std::optional<std::int64_t> takeVint(std::string_view& bytes);

}  // namespace hollowmere

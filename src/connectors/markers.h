#pragma once

#include <string_view>

namespace hollowmere {

/// In front of the Base64 of a binary value.
inline constexpr std::string_view binaryMarker = "&base64;";

/// Whether a text begins with the binary marker, in any letter case.
bool hasBinaryMarker(std::string_view text);

}  // namespace hollowmere

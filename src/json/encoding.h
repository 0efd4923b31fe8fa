#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace hollowmere {

/// Standard Base64 with padding (RFC 4648, section 4).
std::string toBase64(std::string_view bytes);
/// Nothing when the text is not Base64; blanks and line ends inside are passed over.
std::optional<std::string> fromBase64(std::string_view text);

/// "yyyy-MM-ddTHH:mm:ss.zzzZ" of milliseconds since 1970 UTC; years beyond 0000-9999 with a sign.
std::string toIsoText(std::int64_t millisecondsUtc);

}  // namespace hollowmere

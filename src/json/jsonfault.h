#pragma once

#include <cstddef>
#include <string_view>

namespace hollowmere {

/// Reads a text that the fast reader refused once more, slowly and strictly, to say where its fault is.
/// fallback is the reason to give when this reader finds none. Always throws TJsonError.
[[noreturn]] void throwJsonFault(std::string_view text, std::size_t depthLimit, const char* fallback);

/// Whether the whole text is one number of JSON's grammar.
bool isJsonNumber(std::string_view text);

}  // namespace hollowmere

#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "json/value.h"

namespace hollowmere {

/// The bytes of a text "&base64;" + Base64 (the marker in any letter case); nothing when it is none.
std::optional<std::string> bytesOfText(std::string_view text);
/// The same of a value: a binary, or a text of that form.
std::optional<std::string> bytesOfValue(const TValue& value);
/// Whether bytesOfValue() may find something; does not decode.
bool mayHoldBytes(const TValue& value);
/// "&base64;" + Base64.
std::string textOfBytes(std::string_view bytes);

/// How bytes are best shown.
enum class TBytesForm { Picture, Text, Other };

/// What bytes are, judged by how they begin and, for text, by all of them.
struct TBytesType {
  TBytesForm form = TBytesForm::Other;
  std::string_view extension = "bin";  ///< of a file that would hold them, without a dot
};
TBytesType typeOfBytes(std::string_view bytes);

/// The extensions that typeOfBytes() can find, in the order in which they are to be offered.
std::span<const std::string_view> knownExtensions();

/// Lines of sixteen bytes: offset, digits, and the characters of ASCII ("." for others).
std::string hexDump(std::string_view bytes);

}  // namespace hollowmere

#pragma once

#include <string>
#include <string_view>

namespace hollowmere {

/// The text without blanks and control characters at its ends.
inline std::string_view trimmed(std::string_view text) {
  while (!text.empty() && static_cast<unsigned char>(text.front()) <= ' ') text.remove_prefix(1);
  while (!text.empty() && static_cast<unsigned char>(text.back()) <= ' ') text.remove_suffix(1);
  return text;
}

/// Each occurrence of a piece replaced, from the left; what was put in is not looked at again.
inline std::string replaceAll(std::string_view text, std::string_view piece, std::string_view by) {
  std::string out;
  out.reserve(text.size());
  std::size_t from = 0;
  for (std::size_t at; (at = text.find(piece, from)) != std::string_view::npos; from = at + piece.size())
    out.append(text, from, at - from).append(by);
  return out.append(text, from);
}

}  // namespace hollowmere

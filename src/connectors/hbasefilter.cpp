#include <algorithm>
#include <array>

#include "connectors/nosqlcommon.h"

namespace hollowmere {

namespace {

std::string withoutLineEnds(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
    out += text[i] == '\r' || text[i] == '\n' ? ' ' : text[i];
  }
  return out;
}

char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

void raise(std::string& text, std::size_t from, std::size_t to) {
  for (; from < to; ++from) text[from] = upper(text[from]);
}

bool isWord(std::string_view text) {
  static constexpr std::array<std::string_view, 11> words{
      "OR",      "AND",  "SKIP", "WHILE", "LESS", "LESS_OR_EQUAL", "EQUAL", "NOT_EQUAL", "GREATER_OR_EQUAL",
      "GREATER", "NO_OP"};
  return std::any_of(words.begin(), words.end(),
                     [text](std::string_view word) { return equalIgnoringCase(word, text); });
}

}  // namespace

std::string NormalizeHBaseFilter(std::string_view filter) {
  std::string text = withoutLineEnds(filter);
  // A quote that is never closed does not begin a literal.
  const bool literals = std::count(text.begin(), text.end(), '\'') % 2 == 0;
  bool inside = false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '\'' && literals) inside = !inside;
    if (inside || text[at] != ' ') continue;
    const std::size_t end = text.find(' ', at + 1);
    if (end == std::string::npos) break;
    if (isWord(std::string_view(text).substr(at + 1, end - at - 1))) raise(text, at + 1, end);
  }
  return text;
}

}  // namespace hollowmere

#include "connectors/markers.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <stdexcept>

#include "connectors/nosqlcommon.h"
#include "connectors/textpiece.h"
#include "json/encoding.h"
#include "json/json.h"

namespace hollowmere {

namespace {

constexpr std::string_view quoteMarker = "&quot;";
constexpr std::string_view textMarker = "&str;";

bool isBlank(char c) { return static_cast<unsigned char>(c) <= ' '; }

bool isControl(char c) { return static_cast<unsigned char>(c) < ' ' && c != '\t' && c != '\n' && c != '\r'; }

bool hasSeparator(std::string_view text) { return text.find_first_of("/: ") != std::string_view::npos; }

/// What one pass over a text finds out.
struct TLook {
  bool beyondAscii = false;
  bool ampersand = false;
  bool belowBlank = false;
};

/// Eight bytes at a time: most texts hold neither.
TLook look(std::string_view text) {
  constexpr std::uint64_t ones = 0x0101010101010101, highs = 0x8080808080808080, ampersands = ones * '&',
                          blanks = ones * ' ';
  std::uint64_t high = 0, found = 0, low = 0;
  const auto add = [&](std::uint64_t word) {
    high |= word;
    low |= (word - blanks) & ~word;
    const std::uint64_t difference = word ^ ampersands;
    found |= (difference - ones) & ~difference;
  };
  const char* at = text.data();
  std::size_t left = text.size();
  for (; left >= sizeof(std::uint64_t); at += sizeof(std::uint64_t), left -= sizeof(std::uint64_t)) {
    std::uint64_t word;
    std::memcpy(&word, at, sizeof word);
    add(word);
  }
  // The upper bytes of the rest are filled with what is never looked for.
  for (; left > 0; ++at, --left) add(blanks << 8 | static_cast<unsigned char>(*at));
  return {(high & highs) != 0, (found & highs) != 0, (low & highs) != 0};
}

TValue decoded(std::string_view text) {
  auto bytes = fromBase64(text.substr(binaryMarker.size()));
  if (bytes) return TValue::binary(std::move(*bytes));
  constexpr std::size_t shown = 40;
  std::string sample(text.substr(0, shown));
  if (!isValidText(sample)) sample = binaryMarker;
  throw std::runtime_error("not Base64 behind the marker: \"" + sample +
                           (text.size() > shown ? "...\"" : "\""));
}

}  // namespace

bool hasBinaryMarker(std::string_view text) {
  return text.size() >= binaryMarker.size() && text.front() == '&' &&
         equalIgnoringCase(text.substr(0, binaryMarker.size()), binaryMarker);
}

std::string EscapeQuotes(std::string_view text) { return replaceAll(text, "\"", quoteMarker); }

std::string UnescapeMarkers(std::string_view text) {
  text = trimmed(text);
  if (text.find('&') == std::string_view::npos) return std::string(text);
  return replaceAll(replaceAll(text, quoteMarker, "\""), textMarker, "");
}

bool isValidText(std::string_view bytes) { return isUtf8(bytes); }

bool isPlainText(std::string_view bytes) {
  if (bytes.empty()) return true;
  const TLook seen = look(bytes);
  if (isBlank(bytes.front()) || isBlank(bytes.back())) return false;
  if (seen.belowBlank && std::any_of(bytes.begin(), bytes.end(), isControl)) return false;
  if (seen.ampersand && (hasBinaryMarker(bytes) || bytes.find(quoteMarker) != std::string_view::npos ||
                         bytes.find(textMarker) != std::string_view::npos))
    return false;
  return !seen.beyondAscii || isValidText(bytes);
}

std::optional<TValue> convertText(const std::string& text, bool inList, const TDateTimeText& dates) {
  if (text.empty()) return std::nullopt;
  if (text.size() == 4 && equalIgnoringCase(text, "true")) return TValue(true);
  if (text.size() == 5 && equalIgnoringCase(text, "false")) return TValue(false);
  const TLook seen = look(text);
  if (!inList) {
    if (seen.ampersand && hasBinaryMarker(text)) return decoded(text);
    if (seen.beyondAscii && !isValidText(text)) return TValue::binary(text);
  }
  // The parser sends most texts away at their first bytes, so it is asked before the search.
  if (const auto moment = dates.parse(text); moment && hasSeparator(text)) return TValue::dateTime(*moment);
  if (!seen.ampersand && !isBlank(text.front()) && !isBlank(text.back())) return std::nullopt;
  std::string plain = UnescapeMarkers(text);
  if (plain == text) return std::nullopt;
  return TValue(std::move(plain));
}

}  // namespace hollowmere

#include "connectors/cassandratype.h"

#include <algorithm>
#include <array>
#include <tuple>

#include "connectors/nosqlcommon.h"
#include "connectors/textpiece.h"

namespace hollowmere {

namespace {

constexpr std::size_t none = std::string_view::npos;
using TEntry = std::pair<std::string_view, std::string_view>;

std::string lower(std::string_view text) {
  std::string out(text);
  for (char& c : out)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return out;
}

/// What stands between the bracket at a place and the one that closes it, or the end of the text.
std::string_view inBrackets(std::string_view text, std::size_t open, char opening, char closing) {
  int depth = 0;
  for (std::size_t at = open; at < text.size(); ++at) {
    depth += text[at] == opening ? 1 : text[at] == closing ? -1 : 0;
    if (depth == 0) return text.substr(open + 1, at - open - 1);
  }
  return text.substr(std::min(open + 1, text.size()));
}

std::string_view scalarType(std::string_view validator) {
  static constexpr std::array<TEntry, 12> types{{
      {"asciitype", "ascii"},
      {"longtype", "bigint"},
      {"bytestype", "blob"},
      {"booleantype", "boolean"},
      {"decimaltype", "decimal"},
      {"doubletype", "double"},
      {"floattype", "float"},
      {"int32type", "int"},
      {"utf8type", "text"},
      {"timestamptype", "timestamp"},
      {"uuidtype", "uuid"},
      {"integertype", "varint"},
  }};
  // Their parts are types too, but not theirs.
  if (validator.find("tupletype(") != none || validator.find("usertype(") != none) return "unknown";
  for (const auto& [piece, type] : types)
    if (validator.find(piece) != none) return type;
  return "unknown";
}

std::string typeOf(std::string_view validator) {
  static constexpr std::array<TEntry, 3> wrappers{
      {{"listtype(", "list"}, {"maptype(", "map"}, {"settype(", "set"}}};
  std::size_t first = std::min(validator.find("tupletype("), validator.find("usertype("));
  const TEntry* wrapper = nullptr;
  for (const TEntry& entry : wrappers)
    if (const std::size_t at = validator.find(entry.first); at < first) {
      first = at;
      wrapper = &entry;
    }
  if (!wrapper) return std::string(scalarType(validator));
  const std::string_view inner = inBrackets(validator, first + wrapper->first.size() - 1, '(', ')');
  const std::string begin = std::string(wrapper->second) + '<';
  if (wrapper->second != "map") return begin + typeOf(inner) + '>';
  const auto [key, value] = splitAtComma(inner);
  return begin + typeOf(key) + ',' + typeOf(value) + '>';
}

}  // namespace

std::pair<std::string_view, std::string_view> splitAtComma(std::string_view text) {
  int depth = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    depth += c == '(' || c == '<' ? 1 : c == ')' || c == '>' ? -1 : 0;
    if (c == ',' && depth == 0) return {trimmed(text.substr(0, at)), trimmed(text.substr(at + 1))};
  }
  return {trimmed(text), {}};
}

TCqlType::TCqlType(std::string_view text) : name(trimmed(text)) {
  while (name.starts_with("frozen<")) name = trimmed(inBrackets(name, 6, '<', '>'));
  const std::size_t open = name.find('<');
  if (open == none) return;
  const std::string_view outer = name.substr(0, open);
  const std::string_view inner = inBrackets(name, open, '<', '>');
  if (outer == "map") {
    std::tie(element, value) = splitAtComma(inner);
  } else if (outer == "set" || outer == "list") {
    element = trimmed(inner);
  } else if (outer == "tuple") {
    items = trimmed(inner);
  } else {
    return;
  }
  name = outer;
}

std::string CassandraValidatorToCqlType(std::string_view validator) {
  if (trimmed(validator).empty()) return "text";
  return typeOf(lower(validator));
}

}  // namespace hollowmere

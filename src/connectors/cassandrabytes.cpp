#include <algorithm>
#include <optional>
#include <tuple>
#include <vector>

#include "connectors/cassandranumber.h"
#include "connectors/cassandrascalar.h"
#include "connectors/cassandratype.h"
#include "connectors/nosqlcommon.h"
#include "connectors/textpiece.h"
#include "json/json.h"

namespace hollowmere {

namespace {

constexpr std::string_view between = " , ";
constexpr std::string_view afterKey = " : ";

/// An element's bytes, or nothing for a null.
using TElement = std::optional<std::string_view>;

/// Takes a collection's bytes apart. Nothing when these lengths do not use them up exactly.
std::optional<std::vector<TElement>> elements(std::string_view bytes, bool pairs,
                                              TCollectionLengths lengths) {
  const std::size_t width = lengths == TCollectionLengths::Short16 ? 2 : 4;
  const auto length = [&]() -> std::optional<std::int64_t> {
    if (bytes.size() < width) return std::nullopt;
    const std::int64_t number = bigEndian(bytes.substr(0, width));
    bytes.remove_prefix(width);
    return width == 2 ? number & 0xFFFF : number;
  };
  const auto count = length();
  // Each element has its length at least: a wrong count must not ask for memory.
  if (!count || *count < 0 || static_cast<std::uint64_t>(*count) * (pairs ? 2 : 1) > bytes.size() / width)
    return std::nullopt;
  std::vector<TElement> found(static_cast<std::size_t>(*count) * (pairs ? 2 : 1));
  for (TElement& element : found) {
    const auto size = length();
    if (!size || (*size > 0 && static_cast<std::uint64_t>(*size) > bytes.size())) return std::nullopt;
    if (*size < 0) continue;
    element = bytes.substr(0, static_cast<std::size_t>(*size));
    bytes.remove_prefix(static_cast<std::size_t>(*size));
  }
  if (!bytes.empty()) return std::nullopt;
  return found;
}

std::string cqlQuoted(std::string_view text) { return "'" + replaceAll(text, "'", "''") + "'"; }

bool isCqlQuoted(std::string_view type) {
  return type == "ascii" || type == "text" || type == "varchar" || type == "timestamp";
}

class TColumnText {
 public:
  TColumnText(bool cql, const TDateTimeText& dates) : cql_(cql), dates_(dates) {}

  std::string column(std::string_view bytes, std::string_view typeText, TCollectionLengths lengths) const {
    const TCqlType type(typeText);
    if (bytes.empty()) return {};
    if (type.isCollection()) return collection(bytes, type, lengths);
    if (!type.items.empty()) return tuple(bytes, type);
    const TScalarText scalar = cassandraScalar(bytes, type.name, cql_, dates_);
    return cql_ && isCqlQuoted(type.name) ? cqlQuoted(scalar.text) : scalar.text;
  }

 private:
  std::string collection(std::string_view bytes, const TCqlType& type, TCollectionLengths lengths) const {
    const bool map = type.name == "map";
    const auto other =
        lengths == TCollectionLengths::Int32 ? TCollectionLengths::Short16 : TCollectionLengths::Int32;
    auto found = elements(bytes, map, lengths);
    if (!found) found = elements(bytes, map, other);
    if (!found)
      throwBadBytes(type.name,
                    "the lengths inside do not fit its " + std::to_string(bytes.size()) + " bytes");
    const bool braces = map || (cql_ && type.name == "set");
    std::string out(1, braces ? '{' : '[');
    for (std::size_t i = 0; i < found->size(); ++i) {
      if (i > 0) out += map && i % 2 == 1 ? afterKey : between;
      if (map && i % 2 == 0)
        out += key((*found)[i], type.element);
      else
        out += element((*found)[i], map ? type.value : type.element);
    }
    return out += braces ? '}' : ']';
  }

  /// Its items have 32-bit lengths on every server; those at the end may be missing.
  std::string tuple(std::string_view bytes, const TCqlType& type) const {
    std::string out(1, cql_ ? '(' : '[');
    auto [item, others] = splitAtComma(type.items);
    for (bool first = true; !item.empty(); first = false, std::tie(item, others) = splitAtComma(others)) {
      const std::int64_t size = bytes.size() < 4 ? -1 : bigEndian(bytes.substr(0, 4));
      bytes.remove_prefix(std::min<std::size_t>(4, bytes.size()));
      if (size > 0 && static_cast<std::uint64_t>(size) > bytes.size()) throwBadBytes("tuple", "it is torn");
      const std::size_t length = size > 0 ? static_cast<std::size_t>(size) : 0;
      if (!first) out += between;
      out += size < 0 ? "null" : element(bytes.substr(0, length), item);
      bytes.remove_prefix(length);
    }
    return out += cql_ ? ')' : ']';
  }

  /// A JSON name is text, whatever the key was.
  std::string key(const TElement& bytes, std::string_view typeText) const {
    if (cql_) return element(bytes, typeText);
    return toJson(TValue(column(bytes.value_or(""), typeText, TCollectionLengths::Int32)));
  }

  /// Collections inside others have 32-bit lengths on every server.
  std::string element(const TElement& bytes, std::string_view typeText) const {
    if (!bytes) return "null";
    const TCqlType type(typeText);
    if (type.isCollection())
      return bytes->empty() ? "null" : collection(*bytes, type, TCollectionLengths::Int32);
    if (bytes->empty()) return emptyElement(type.name);
    if (!type.items.empty()) return tuple(*bytes, type);
    TScalarText scalar = cassandraScalar(*bytes, type.name, cql_, dates_);
    if (cql_) return isCqlQuoted(type.name) ? cqlQuoted(scalar.text) : std::move(scalar.text);
    return scalar.isNumber ? std::move(scalar.text) : toJson(TValue(std::move(scalar.text)));
  }

  [[nodiscard]] std::string emptyElement(std::string_view type) const {
    const bool text = type == "ascii" || type == "text" || type == "varchar" || type == "blob";
    if (!text) return "null";
    return cql_ ? "''" : "\"\"";
  }

  bool cql_;
  const TDateTimeText& dates_;
};

}  // namespace

std::string CassandraBytesToText(std::string_view bytes, std::string_view cqlType, bool quote,
                                 const TDateTimeText& dates, TCollectionLengths lengths) {
  return TColumnText(quote, dates).column(bytes, cqlType, lengths);
}

}  // namespace hollowmere

#include "connectors/cassandra/cassvalue.h"

#include <bit>
#include <charconv>
#include <optional>
#include <vector>

#include "connectors/cassandranumber.h"
#include "connectors/cassandrascalar.h"
#include "json/encoding.h"

namespace hollowmere {

namespace {

using TBase = TCassType::TBase;
using TElement = std::optional<std::string_view>;

void checkLength(std::string_view bytes, const TCassType& type, std::size_t length) {
  if (bytes.size() != length)
    throwBadBytes(type.cql(), std::to_string(bytes.size()) + " bytes instead of " + std::to_string(length));
}

/// The number that a person wrote, not the nearest one that a double can tell from its neighbours.
double widened(float number) {
  char text[32];
  const auto [stop, error] = std::to_chars(text, text + sizeof text, number);
  double wide = static_cast<double>(number);
  std::from_chars(text, stop, wide);
  return wide;
}

TValue textValue(std::string_view bytes, const TCassType& type) {
  if (!isValidText(bytes)) throwBadBytes(type.cql(), "not UTF-8");
  return bytes;
}

TValue blobValue(std::string_view bytes) {
  if (isPlainText(bytes)) return bytes;
  return TValue::binary(std::string(bytes));
}

TValue integerOf(const std::string& digits) {
  std::int64_t number = 0;
  const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error == std::errc()) return TValue::wideInt(number);
  return TValue::decimal(digits);
}

TValue decimalValue(std::string_view bytes, const TCassType& type) {
  if (bytes.size() < 5) throwBadBytes(type.cql(), std::to_string(bytes.size()) + " bytes");
  return TValue::decimal(decimalText(varintText(bytes.substr(4)), bigEndian(bytes.substr(0, 4))));
}

TValue scalarText(std::string_view bytes, const TCassType& type, const TDateTimeText& dates) {
  return cassandraScalar(bytes, type.cql(), false, dates).text;
}

/// What the fixed length of a type is; 0 when it has none.
std::size_t lengthOf(TBase base) {
  switch (base) {
    case TBase::Boolean:
    case TBase::TinyInt: return 1;
    case TBase::SmallInt: return 2;
    case TBase::Int:
    case TBase::Float:
    case TBase::Date: return 4;
    case TBase::BigInt:
    case TBase::Counter:
    case TBase::Double:
    case TBase::Timestamp:
    case TBase::Time: return 8;
    case TBase::Uuid:
    case TBase::TimeUuid: return 16;
    default: return 0;
  }
}

TValue scalarValue(std::string_view bytes, const TCassType& type, const TDateTimeText& dates) {
  if (const std::size_t length = lengthOf(type.base); length > 0) checkLength(bytes, type, length);
  switch (type.base) {
    case TBase::Ascii:
    case TBase::Text: return textValue(bytes, type);
    case TBase::Boolean: return bytes[0] != 0;
    case TBase::TinyInt:
    case TBase::SmallInt:
    case TBase::Int: return bigEndian(bytes);
    case TBase::BigInt:
    case TBase::Counter: return TValue::wideInt(bigEndian(bytes));
    case TBase::Varint: return integerOf(varintText(bytes));
    case TBase::Decimal: return decimalValue(bytes, type);
    case TBase::Float: return widened(std::bit_cast<float>(static_cast<std::int32_t>(bigEndian(bytes))));
    case TBase::Double: return std::bit_cast<double>(bigEndian(bytes));
    case TBase::Timestamp: return TValue::dateTime(bigEndian(bytes));
    case TBase::Date:
    case TBase::Time:
    case TBase::Uuid:
    case TBase::TimeUuid:
    case TBase::Duration: return scalarText(bytes, type, dates);
    case TBase::Inet:
      if (bytes.size() != 4) checkLength(bytes, type, 16);
      return scalarText(bytes, type, dates);
    default: return blobValue(bytes);
  }
}

/// Takes a number of that many bytes; nothing when they are not there.
std::optional<std::int64_t> takeNumber(std::string_view& bytes, std::size_t width) {
  if (bytes.size() < width) return std::nullopt;
  const std::int64_t number = bigEndian(bytes.substr(0, width));
  bytes.remove_prefix(width);
  return width == 2 ? number & 0xFFFF : number;
}

/// Takes a length and as many bytes: true, with nothing in element, for a null.
bool takeElement(std::string_view& bytes, std::size_t width, TElement& element) {
  const auto size = takeNumber(bytes, width);
  if (!size || (*size > 0 && static_cast<std::uint64_t>(*size) > bytes.size())) return false;
  element.reset();
  if (*size < 0) return true;
  element = bytes.substr(0, static_cast<std::size_t>(*size));
  bytes.remove_prefix(static_cast<std::size_t>(*size));
  return true;
}

/// Nothing when these lengths do not use the bytes up exactly.
std::optional<std::vector<TElement>> takeElements(std::string_view bytes, std::size_t each,
                                                  std::size_t width) {
  const auto count = takeNumber(bytes, width);
  // Each element has its length at least: a wrong count must not ask for memory.
  if (!count || *count < 0 || static_cast<std::uint64_t>(*count) * each > bytes.size() / width)
    return std::nullopt;
  std::vector<TElement> found(static_cast<std::size_t>(*count) * each);
  for (TElement& element : found)
    if (!takeElement(bytes, width, element)) return std::nullopt;
  if (!bytes.empty()) return std::nullopt;
  return found;
}

/// What stands in a collection, a tuple or a user type: its lengths have 32 bits on every server.
TValue inner(const TElement& bytes, const TCassType& type, const TDateTimeText& dates) {
  const bool text = type.base == TBase::Ascii || type.base == TBase::Text || type.base == TBase::Blob;
  if (!bytes || (bytes->empty() && !text)) return nullptr;
  return cassValue(*bytes, type, TCollectionLengths::Int32, dates);
}

/// A name in an object, whatever the key was.
std::string keyText(const TElement& bytes, const TCassType& type, const TDateTimeText& dates) {
  TValue key = inner(bytes, type, dates);
  if (key.is(TKind::Text)) return std::move(key.asText());
  if (key.is(TKind::Double) && bytes) {
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, key.asDouble()).ptr};
  }
  return textForm(key);
}

TValue collectionValue(std::string_view bytes, const TCassType& type, TCollectionLengths lengths,
                       const TDateTimeText& dates) {
  const bool map = type.base == TBase::Map;
  const bool isShort = lengths == TCollectionLengths::Short16 && !type.frozen;
  auto found = takeElements(bytes, map ? 2 : 1, isShort ? 2 : 4);
  if (!found) found = takeElements(bytes, map ? 2 : 1, isShort ? 4 : 2);
  if (!found)
    throwBadBytes(type.cql(), "the lengths inside do not fit its " + std::to_string(bytes.size()) + " bytes");
  TValue value;
  if (map) {
    TObject& object = value.makeObject();
    for (std::size_t i = 0; i < found->size(); i += 2)
      object.add(keyText((*found)[i], type.parts[0], dates), inner((*found)[i + 1], type.parts[1], dates));
  } else {
    TList& list = value.makeList();
    list.reserve(found->size());
    for (const TElement& element : *found) list.push_back(inner(element, type.parts[0], dates));
  }
  return value;
}

/// Items of a tuple or fields of a user type; those at the end may be missing.
TValue itemsValue(std::string_view bytes, const TCassType& type, const TDateTimeText& dates) {
  TList items(type.parts.size());
  for (std::size_t i = 0; i < items.size() && !bytes.empty(); ++i) {
    TElement element;
    if (!takeElement(bytes, 4, element)) throwBadBytes(type.cql(), "it is torn");
    items[i] = inner(element, type.parts[i], dates);
  }
  if (type.base == TBase::Tuple) return items;
  TObject fields;
  for (std::size_t i = 0; i < items.size(); ++i) fields.add(type.fields[i], std::move(items[i]));
  return fields;
}

}  // namespace

TValue cassValue(std::string_view bytes, const TCassType& type, TCollectionLengths lengths,
                 const TDateTimeText& dates) {
  if (bytes.empty()) return "";
  if (type.isCollection()) return collectionValue(bytes, type, lengths, dates);
  if (type.base == TBase::Tuple || type.base == TBase::User) return itemsValue(bytes, type, dates);
  return scalarValue(bytes, type, dates);
}

}  // namespace hollowmere

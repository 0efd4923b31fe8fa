#include "connectors/mongodb/bsonvalue.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>
#include <optional>
#include <string_view>

#include "connectors/nosqlcommon.h"

namespace hollowmere {

namespace {

[[noreturn]] void refuse(std::string_view key, const std::string& reason) {
  throw std::runtime_error("The value of \"" + std::string(key) + "\" " + reason);
}

/// Digits without sign, leading zeros and trailing zeros.
std::size_t significantDigits(std::string_view number) {
  std::string digits;
  for (const char c : number) {
    if (c == 'e' || c == 'E') break;
    if (c >= '0' && c <= '9') digits += c;
  }
  const std::size_t first = digits.find_first_not_of('0');
  if (first == std::string::npos) return 0;
  return digits.find_last_not_of('0') - first + 1;
}

/// isValidText(), quicker for the usual short text without letters beyond ASCII.
bool isText(std::string_view bytes) {
  char all = 0;
  for (const char c : bytes) all = static_cast<char>(all | c);
  return (all & 0x80) == 0 || isValidText(bytes);
}

class TBsonBuilder {
 public:
  /// Without dates texts are not converted.
  explicit TBsonBuilder(const TDateTimeText* dates) : dates_(dates) {}

  void appendObject(const TObject& object, bson_t* out) {
    for (const TMember& member : object) {
      checkName(member.name);
      append(out, member.name, member.value, false);
    }
  }

 private:
  static void checkName(const std::string& name) {
    // A name is a C string: what follows a zero byte would be lost.
    if (name.find('\0') != std::string::npos)
      refuse(name.c_str(), "has a name with a zero byte, which BSON cannot hold");
    if (name.empty()) refuse(name, "has an empty name");
    if (!isText(name)) refuse("", "has a name that is not UTF-8");
  }

  void append(bson_t* out, std::string_view key, const TValue& value, bool inList) {
    const char* name = key.data();
    const int length = static_cast<int>(key.size());
    bool done = true;
    switch (value.kind()) {
      case TKind::Null: done = bson_append_null(out, name, length); break;
      case TKind::Boolean: done = bson_append_bool(out, name, length, value.asBool()); break;
      case TKind::Int: done = appendInt(out, name, length, value); break;
      case TKind::Double: done = bson_append_double(out, name, length, value.asDouble()); break;
      case TKind::Text: done = appendText(out, key, value.asText(), inList); break;
      case TKind::DateTime: done = bson_append_date_time(out, name, length, value.asMilliseconds()); break;
      case TKind::Binary: done = appendBinary(out, key, value); break;
      case TKind::ObjectId: done = appendObjectId(out, key, value.asObjectId()); break;
      case TKind::Decimal: done = appendDecimal(out, key, value.asText()); break;
      case TKind::List: done = appendList(out, key, value.asList()); break;
      case TKind::Object: done = appendDocument(out, key, value.asObject()); break;
    }
    if (!done) refuse(key, "does not fit: a document may not be larger than 2 GB");
  }

  static bool appendInt(bson_t* out, const char* name, int length, const TValue& value) {
    const std::int64_t number = value.asInt();
    const bool small = number >= std::numeric_limits<std::int32_t>::min() &&
                       number <= std::numeric_limits<std::int32_t>::max();
    if (small && value.subtype() == 0)
      return bson_append_int32(out, name, length, static_cast<std::int32_t>(number));
    return bson_append_int64(out, name, length, number);
  }

  bool appendText(bson_t* out, std::string_view key, const std::string& text, bool inList) {
    // Outside lists such a text becomes binary.
    if (inList && !isText(text)) refuse(key, "is not UTF-8");
    const std::optional<TValue> converted = dates_ ? convertText(text, inList, *dates_) : std::nullopt;
    if (!converted) return appendPlain(out, key, text);
    if (converted->is(TKind::Text)) return appendPlain(out, key, converted->asText());
    append(out, key, *converted, inList);
    return true;
  }

  static bool appendPlain(bson_t* out, std::string_view key, const std::string& text) {
    return bson_append_utf8(out, key.data(), static_cast<int>(key.size()), text.data(),
                            static_cast<int>(text.size()));
  }

  static bool appendBinary(bson_t* out, std::string_view key, const TValue& value) {
    return bson_append_binary(out, key.data(), static_cast<int>(key.size()),
                              static_cast<bson_subtype_t>(value.subtype()),
                              reinterpret_cast<const std::uint8_t*>(value.asText().data()),
                              static_cast<std::uint32_t>(value.asText().size()));
  }

  static bool appendObjectId(bson_t* out, std::string_view key, const TObjectId& id) {
    bson_oid_t oid;
    bson_oid_init_from_data(&oid, id.data());
    return bson_append_oid(out, key.data(), static_cast<int>(key.size()), &oid);
  }

  static bool appendDecimal(bson_t* out, std::string_view key, const std::string& digits) {
    bson_decimal128_t decimal;
    if (significantDigits(digits) > 34 || !bson_decimal128_from_string(digits.c_str(), &decimal))
      refuse(key, "has more digits than MongoDB can hold: " + digits.substr(0, 60));
    return bson_append_decimal128(out, key.data(), static_cast<int>(key.size()), &decimal);
  }

  bool appendList(bson_t* out, std::string_view key, const TList& list) {
    bson_t child;
    if (!bson_append_array_begin(out, key.data(), static_cast<int>(key.size()), &child)) return false;
    char digits[16];
    std::uint32_t index = 0;
    for (const TValue& element : list) {
      const char* name = nullptr;
      const std::size_t length = bson_uint32_to_string(index++, &name, digits, sizeof digits);
      append(&child, {name, length}, element, true);
    }
    return bson_append_array_end(out, &child);
  }

  bool appendDocument(bson_t* out, std::string_view key, const TObject& object) {
    bson_t child;
    if (!bson_append_document_begin(out, key.data(), static_cast<int>(key.size()), &child)) return false;
    appendObject(object, &child);
    return bson_append_document_end(out, &child);
  }

  const TDateTimeText* dates_;
};

/// Servers allow 100 levels. What is sent beyond that must not overrun the stack.
constexpr int deepest = 200;

TValue readValue(const bson_iter_t& iter, int depth);
TObject readObject(bson_iter_t& iter, int depth);

TList readList(bson_iter_t& iter, int depth) {
  TList list;
  while (bson_iter_next(&iter)) list.push_back(readValue(iter, depth));
  if (iter.err_off != 0) throw std::runtime_error("The server sent a broken document.");
  return list;
}

TObjectId toObjectId(const bson_oid_t& oid) {
  TObjectId id;
  std::copy(std::begin(oid.bytes), std::end(oid.bytes), id.begin());
  return id;
}

TValue readNested(const bson_iter_t& iter, bool list, int depth) {
  bson_iter_t child;
  if (depth > deepest || !bson_iter_recurse(&iter, &child))
    throw std::runtime_error("The server sent a broken document.");
  if (list) return readList(child, depth);
  return readObject(child, depth);
}

TValue readBinary(const bson_iter_t& iter) {
  bson_subtype_t subtype = BSON_SUBTYPE_BINARY;
  std::uint32_t length = 0;
  const std::uint8_t* bytes = nullptr;
  bson_iter_binary(&iter, &subtype, &length, &bytes);
  return TValue::binary(std::string(reinterpret_cast<const char*>(bytes), length),
                        static_cast<std::uint8_t>(subtype));
}

TValue readDecimal(const bson_iter_t& iter) {
  bson_decimal128_t decimal;
  bson_iter_decimal128(&iter, &decimal);
  char text[BSON_DECIMAL128_STRING];
  bson_decimal128_to_string(&decimal, text);
  return TValue::decimal(text);
}

TValue readReference(const bson_iter_t& iter) {
  std::uint32_t length = 0;
  const char* collection = nullptr;
  const bson_oid_t* oid = nullptr;
  bson_iter_dbpointer(&iter, &length, &collection, &oid);
  return "DBRef(\"" + std::string(collection, length) + "\", \"" + toHex(toObjectId(*oid)) + "\")";
}

TValue readRegex(const bson_iter_t& iter) {
  const char* options = nullptr;
  const char* pattern = bson_iter_regex(&iter, &options);
  return "/" + std::string(pattern) + "/" + options;
}

TValue readTimestamp(const bson_iter_t& iter) {
  std::uint32_t seconds = 0;
  std::uint32_t increment = 0;
  bson_iter_timestamp(&iter, &seconds, &increment);
  return TValue::dateTime(std::int64_t{seconds} * 1000);
}

template <typename Read>
TValue readText(Read read, const bson_iter_t& iter) {
  std::uint32_t length = 0;
  const char* text = read(&iter, &length);
  return std::string(text, length);
}

TValue readCodeWithScope(const bson_iter_t& iter) {
  std::uint32_t length = 0;
  std::uint32_t scopeLength = 0;
  const std::uint8_t* scope = nullptr;
  const char* code = bson_iter_codewscope(&iter, &length, &scopeLength, &scope);
  return std::string(code, length);
}

TValue readValue(const bson_iter_t& iter, int depth) {
  switch (bson_iter_type(&iter)) {
    case BSON_TYPE_DOUBLE: return bson_iter_double(&iter);
    case BSON_TYPE_UTF8: return readText(bson_iter_utf8, iter);
    case BSON_TYPE_DOCUMENT: return readNested(iter, false, depth + 1);
    case BSON_TYPE_ARRAY: return readNested(iter, true, depth + 1);
    case BSON_TYPE_BINARY: return readBinary(iter);
    case BSON_TYPE_OID: return toObjectId(*bson_iter_oid(&iter));
    case BSON_TYPE_BOOL: return bson_iter_bool(&iter);
    case BSON_TYPE_DATE_TIME: return TValue::dateTime(bson_iter_date_time(&iter));
    case BSON_TYPE_REGEX: return readRegex(iter);
    case BSON_TYPE_DBPOINTER: return readReference(iter);
    case BSON_TYPE_CODE: return readText(bson_iter_code, iter);
    case BSON_TYPE_SYMBOL: return readText(bson_iter_symbol, iter);
    case BSON_TYPE_CODEWSCOPE: return readCodeWithScope(iter);
    case BSON_TYPE_INT32: return static_cast<std::int64_t>(bson_iter_int32(&iter));
    case BSON_TYPE_TIMESTAMP: return readTimestamp(iter);
    case BSON_TYPE_INT64: return TValue::wideInt(bson_iter_int64(&iter));
    case BSON_TYPE_DECIMAL128: return readDecimal(iter);
    case BSON_TYPE_MAXKEY: return "MaxKey";
    case BSON_TYPE_MINKEY: return "MinKey";
    case BSON_TYPE_EOD:
    case BSON_TYPE_UNDEFINED:
    case BSON_TYPE_NULL: return nullptr;
  }
  return nullptr;
}

TObject readObject(bson_iter_t& iter, int depth) {
  TObject object;
  object.reserve(8);
  while (bson_iter_next(&iter)) {
    const std::string_view key(bson_iter_key(&iter), bson_iter_key_len(&iter));
    object.add(key, readValue(iter, depth));
  }
  if (iter.err_off != 0) throw std::runtime_error("The server sent a broken document.");
  return object;
}

/// The value that a wrapper object of MongoDB's JSON stands for.
std::optional<TValue> unwrapped(const TObject& object, const TDateTimeText& dates) {
  if (object.size() != 1) return std::nullopt;
  const std::string& name = object.begin()->name;
  const TValue& inner = object.begin()->value;
  if (name == "$date" && inner.is(TKind::Int)) return TValue::dateTime(inner.asInt());
  if (name == "$date" && inner.is(TKind::Object)) {
    const auto number = unwrapped(inner.asObject(), dates);
    if (number && number->is(TKind::Int)) return TValue::dateTime(number->asInt());
  }
  if (name == "$date" && inner.is(TKind::DateTime)) return inner;
  if (!inner.is(TKind::Text)) return std::nullopt;
  const std::string& text = inner.asText();
  TObjectId id;
  if (name == "$oid" && parseHex(text, id)) return TValue(id);
  if (name == "$numberDecimal") return TValue::decimal(text);
  if (name == "$date")
    if (const auto moment = dates.parse(text)) return TValue::dateTime(*moment);
  std::int64_t number = 0;
  if (name == "$numberLong" &&
      std::from_chars(text.data(), text.data() + text.size(), number).ptr == text.data() + text.size())
    return TValue::wideInt(number);
  return std::nullopt;
}

TValue unwrapAll(const TValue& value, const TDateTimeText& dates);

TObject unwrapAll(const TObject& object, const TDateTimeText& dates) {
  TObject result;
  for (const TMember& member : object) result.add(member.name, unwrapAll(member.value, dates));
  return result;
}

TValue unwrapAll(const TValue& value, const TDateTimeText& dates) {
  if (value.is(TKind::List)) {
    TList list;
    for (const TValue& element : value.asList()) list.push_back(unwrapAll(element, dates));
    return list;
  }
  if (!value.is(TKind::Object)) return value;
  if (auto single = unwrapped(value.asObject(), dates)) return std::move(*single);
  return unwrapAll(value.asObject(), dates);
}

}  // namespace

void JsonToBson(const TObject& document, bson_t* out, const TDateTimeText& dates) {
  TBsonBuilder(&dates).appendObject(document, out);
}

TBsonPtr filterToBson(const TObject& filter, const TDateTimeText& dates) {
  TBsonPtr bson(bson_new());
  JsonToBson(unwrapAll(filter, dates), bson.get(), dates);
  return bson;
}

TBsonPtr boundFilterToBson(const TObject& filter, const TDateTimeText& dates) {
  TBsonPtr bson(bson_new());
  TBsonBuilder(nullptr).appendObject(unwrapAll(filter, dates), bson.get());
  return bson;
}

TObject BsonToJson(const bson_t& bson) {
  bson_iter_t iter;
  if (!bson_iter_init(&iter, &bson)) throw std::runtime_error("The server sent a broken document.");
  return readObject(iter, 0);
}

}  // namespace hollowmere

#include "connectors/cassandra/cassbind.h"

#include <arpa/inet.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "connectors/cassandra/cassnumber.h"
#include "connectors/cassandra/casstime.h"
#include "connectors/markers.h"
#include "connectors/textpiece.h"
#include "json/encoding.h"
#include "json/json.h"

namespace hollowmere {

namespace {

using TBase = TCassType::TBase;

[[noreturn]] void refuse(const TValue& value, const TCassType& type, const std::string& reason = {}) {
  constexpr std::size_t shown = 60;
  std::string text = toJson(value);
  if (text.size() > shown) {
    std::size_t end = shown;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    text = text.substr(0, end) + "...";
  }
  throw std::runtime_error(type.cql() + " cannot take the " + std::string(kindName(value.kind())) + " " +
                           text + (reason.empty() ? "" : " (" + reason + ")"));
}

std::string_view trimmedText(const TValue& value) { return trimmed(value.asText()); }

/// Without its markers; blanks at its ends, which other stores drop, are kept.
std::string unmarkedText(const std::string& text) {
  if (text.find('&') == std::string::npos) return text;
  const std::string_view inner = trimmed(text);
  const auto before = static_cast<std::size_t>(inner.data() - text.data());
  return text.substr(0, before) + UnescapeMarkers(inner) + text.substr(before + inner.size());
}

std::string textBytes(const TValue& value, const TCassType& type) {
  const std::string text = value.is(TKind::Text) ? unmarkedText(value.asText()) : textForm(value);
  if (!isValidText(text)) refuse(TValue::binary(text), type, "the bytes are no text");
  if (type.base == TBase::Ascii)
    for (const char c : text)
      if ((c & 0x80) != 0) refuse(value, type, "beyond ASCII");
  return text;
}

std::string blobBytes(const TValue& value, const TCassType& type) {
  if (value.is(TKind::Binary)) return value.asText();
  if (value.is(TKind::ObjectId))
    return {reinterpret_cast<const char*>(value.asObjectId().data()), value.asObjectId().size()};
  if (!value.is(TKind::Text)) refuse(value, type);
  if (!hasBinaryMarker(value.asText())) return value.asText();
  auto bytes = fromBase64(std::string_view(value.asText()).substr(binaryMarker.size()));
  if (!bytes) refuse(value, type, "not Base64 behind the marker");
  return std::move(*bytes);
}

/// A number's exact value, of any kind that can be one; nothing for others.
std::optional<TPlainNumber> numberOf(const TValue& value) {
  switch (value.kind()) {
    case TKind::Int: return TPlainNumber{std::to_string(value.asInt()), 0};
    case TKind::Decimal: return parseNumber(value.asText());
    case TKind::Text: return parseNumber(trimmedText(value));
    case TKind::Double: {
      char text[32];
      return parseNumber({text, std::to_chars(text, text + sizeof text, value.asDouble()).ptr});
    }
    default: return std::nullopt;
  }
}

std::string integerDigits(const TValue& value, const TCassType& type) {
  const auto number = numberOf(value);
  if (!number) refuse(value, type);
  auto digits = number->integer();
  if (!digits) refuse(value, type, "it has a fraction");
  return std::move(*digits);
}

std::string integerBytes(const TValue& value, const TCassType& type, int bytes) {
  std::int64_t number = 0;
  if (value.is(TKind::Int)) {
    number = value.asInt();
  } else {
    const std::string digits = integerDigits(value, type);
    const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc()) refuse(value, type, "out of range");
  }
  if (bytes < 8 && number != number << (64 - 8 * bytes) >> (64 - 8 * bytes))
    refuse(value, type, "out of range");
  return bigEndianBytes(static_cast<std::uint64_t>(number), bytes);
}

std::string varintValueBytes(const TValue& value, const TCassType& type) {
  if (value.is(TKind::Int)) return varintBytes(value.asInt());
  return varintBytes(integerDigits(value, type));
}

std::string decimalBytes(const TValue& value, const TCassType& type) {
  const auto number = numberOf(value);
  if (!number) refuse(value, type);
  return bigEndianBytes(static_cast<std::uint32_t>(number->scale), 4) + varintBytes(number->digits);
}

double realOf(const TValue& value, const TCassType& type) {
  if (value.is(TKind::Double)) return value.asDouble();
  if (value.is(TKind::Int)) {
    const auto real = static_cast<double>(value.asInt());
    // From 2^63 on it is no 64-bit integer any more.
    const bool same = real < 9223372036854775808.0 && static_cast<std::int64_t>(real) == value.asInt();
    if (!same) refuse(value, type, "it would lose digits");
    return real;
  }
  if (!value.is(TKind::Text) && !value.is(TKind::Decimal)) refuse(value, type);
  std::string_view text = trimmedText(value);
  if (text.starts_with('+')) text.remove_prefix(1);
  double real = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), real);
  if (error != std::errc() || stop != text.data() + text.size()) refuse(value, type);
  return real;
}

std::string floatBytes(const TValue& value, const TCassType& type) {
  const double real = realOf(value, type);
  const auto number = static_cast<float>(real);
  if (std::isfinite(real) && !std::isfinite(number)) refuse(value, type, "out of range");
  return bigEndianBytes(std::bit_cast<std::uint32_t>(number), 4);
}

std::string booleanBytes(const TValue& value, const TCassType& type) {
  bool yes = false;
  if (value.is(TKind::Boolean)) {
    yes = value.asBool();
  } else if (value.is(TKind::Text) && equalIgnoringCase(trimmedText(value), "true")) {
    yes = true;
  } else if (!value.is(TKind::Text) || !equalIgnoringCase(trimmedText(value), "false")) {
    const auto number = numberOf(value);
    if (!number) refuse(value, type);
    yes = number->digits != "0";
  }
  return std::string(1, static_cast<char>(yes));
}

std::string uuidBytes(const TValue& value, const TCassType& type) {
  std::string bytes;
  if (value.is(TKind::Binary)) {
    bytes = value.asText();
  } else if (value.is(TKind::Text)) {
    int high = -1;
    for (const char c : trimmedText(value)) {
      const int digit = c >= '0' && c <= '9'                     ? c - '0'
                        : (c | 0x20) >= 'a' && (c | 0x20) <= 'f' ? (c | 0x20) - 'a' + 10
                                                                 : -1;
      if (digit < 0 && c != '-') refuse(value, type);
      if (digit < 0) continue;
      if (high >= 0) bytes += static_cast<char>(high * 16 + digit);
      high = high >= 0 ? -1 : digit;
    }
    if (trimmedText(value).size() != 36 || high >= 0) refuse(value, type);
  } else {
    refuse(value, type);
  }
  if (bytes.size() != 16) refuse(value, type);
  if (type.base == TBase::TimeUuid && (bytes[6] & 0xF0) != 0x10) refuse(value, type, "not of version 1");
  return bytes;
}

std::string inetBytes(const TValue& value, const TCassType& type) {
  if (value.is(TKind::Binary) && (value.asText().size() == 4 || value.asText().size() == 16))
    return value.asText();
  if (!value.is(TKind::Text)) refuse(value, type);
  const std::string text(trimmedText(value));
  char bytes[16];
  if (inet_pton(AF_INET, text.c_str(), bytes) == 1) return {bytes, 4};
  if (inet_pton(AF_INET6, text.c_str(), bytes) == 1) return {bytes, 16};
  refuse(value, type);
}

std::string timestampBytes(const TValue& value, const TCassType& type, const TDateTimeText& dates) {
  std::optional<std::int64_t> moment;
  if (value.is(TKind::DateTime)) moment = value.asMilliseconds();
  if (value.is(TKind::Int)) moment = value.asInt();
  if (value.is(TKind::Text)) moment = dates.parse(value.asText());
  if (!moment) refuse(value, type);
  return bigEndianBytes(static_cast<std::uint64_t>(*moment), 8);
}

std::string scalarBytes(const TValue& value, const TCassType& type, const TDateTimeText& dates) {
  switch (type.base) {
    case TBase::Ascii:
    case TBase::Text: return textBytes(value, type);
    case TBase::Boolean: return booleanBytes(value, type);
    case TBase::TinyInt: return integerBytes(value, type, 1);
    case TBase::SmallInt: return integerBytes(value, type, 2);
    case TBase::Int: return integerBytes(value, type, 4);
    case TBase::BigInt:
    case TBase::Counter: return integerBytes(value, type, 8);
    case TBase::Varint: return varintValueBytes(value, type);
    case TBase::Decimal: return decimalBytes(value, type);
    case TBase::Float: return floatBytes(value, type);
    case TBase::Double: return bigEndianBytes(std::bit_cast<std::uint64_t>(realOf(value, type)), 8);
    case TBase::Timestamp: return timestampBytes(value, type, dates);
    case TBase::Uuid:
    case TBase::TimeUuid: return uuidBytes(value, type);
    case TBase::Inet: return inetBytes(value, type);
    case TBase::Date:
    case TBase::Time:
    case TBase::Duration:
      if (auto bytes = cassTimeBytes(value, type.base, dates)) return std::move(*bytes);
      refuse(value, type);
    default: return blobBytes(value, type);
  }
}

/// The list or object that a value is, or that its text says.
TValue nestedOf(const TValue& value, const TCassType& type, TKind kind) {
  if (value.is(kind)) return value;
  if (!value.is(TKind::Text)) refuse(value, type);
  TValue parsed;
  try {
    parsed = parseJson(value.asText());
  } catch (const TJsonError& error) {
    refuse(value, type, error.what());
  }
  if (!parsed.is(kind)) refuse(value, type);
  return parsed;
}

class TCollectionBytes {
 public:
  TCollectionBytes(const TCassType& type, TCollectionLengths lengths, const TDateTimeText& dates)
      : type_(type), width_(lengths == TCollectionLengths::Short16 ? 2 : 4), dates_(dates) {}

  std::string ofList(const TList& list) {
    count(list.size());
    for (const TValue& element : list) add(element, type_.parts[0]);
    return std::move(out_);
  }

  std::string ofMap(const TObject& object) {
    count(object.size());
    for (const TMember& member : object) {
      add(TValue(member.name), type_.parts[0]);
      add(member.value, type_.parts[1]);
    }
    return std::move(out_);
  }

 private:
  void count(std::size_t number) {
    if (width_ == 2 && number > 0xFFFF) tooLarge(number, "elements");
    appendBigEndian(out_, number, width_);
  }

  void add(const TValue& element, const TCassType& type) {
    if (element.isNull()) throw std::runtime_error(type_.cql() + " cannot take a null within it");
    const std::string bytes = cassBytes(element, type, TCollectionLengths::Int32, dates_);
    if (width_ == 2 && bytes.size() > 0xFFFF) tooLarge(bytes.size(), "bytes in an element");
    appendBigEndian(out_, bytes.size(), width_);
    out_ += bytes;
  }

  [[noreturn]] void tooLarge(std::size_t number, const char* what) const {
    throw std::runtime_error(type_.cql() + " cannot take " + std::to_string(number) + " " + what +
                             ": at most 65535 before version 3");
  }

  const TCassType& type_;
  int width_;
  const TDateTimeText& dates_;
  std::string out_;
};

std::string itemBytes(const TValue& item, const TCassType& type, const TDateTimeText& dates) {
  if (item.isNull()) return bigEndianBytes(0xFFFFFFFF, 4);
  const std::string bytes = cassBytes(item, type, TCollectionLengths::Int32, dates);
  return bigEndianBytes(bytes.size(), 4) + bytes;
}

std::string tupleBytes(const TValue& value, const TCassType& type, const TDateTimeText& dates) {
  const TValue list = nestedOf(value, type, TKind::List);
  if (list.asList().size() > type.parts.size()) refuse(value, type, "too many items");
  std::string out;
  for (std::size_t i = 0; i < list.asList().size(); ++i)
    out += itemBytes(list.asList()[i], type.parts[i], dates);
  return out;
}

std::string userBytes(const TValue& value, const TCassType& type, const TDateTimeText& dates) {
  const TValue object = nestedOf(value, type, TKind::Object);
  for (const TMember& member : object.asObject()) {
    bool known = false;
    for (const std::string& field : type.fields) known = known || equalIgnoringCase(field, member.name);
    if (!known) refuse(value, type, "it has no field " + member.name);
  }
  std::string out;
  for (std::size_t i = 0; i < type.fields.size(); ++i) {
    const TMember* member = object.asObject().findIgnoringCase(type.fields[i]);
    out += itemBytes(member ? member->value : TValue(), type.parts[i], dates);
  }
  return out;
}

}  // namespace

std::string cassBytes(const TValue& value, const TCassType& type, TCollectionLengths lengths,
                      const TDateTimeText& dates) {
  switch (type.base) {
    case TBase::List:
    case TBase::Set:
      return TCollectionBytes(type, lengths, dates).ofList(nestedOf(value, type, TKind::List).asList());
    case TBase::Map:
      return TCollectionBytes(type, lengths, dates).ofMap(nestedOf(value, type, TKind::Object).asObject());
    case TBase::Tuple: return tupleBytes(value, type, dates);
    case TBase::User: return userBytes(value, type, dates);
    default: return scalarBytes(value, type, dates);
  }
}

}  // namespace hollowmere

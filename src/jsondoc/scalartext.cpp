#include "jsondoc/scalartext.h"

#include <charconv>
#include <cmath>
#include <optional>

#include "connectors/markers.h"
#include "connectors/nosqlcommon.h"
#include "connectors/textpiece.h"
#include "json/encoding.h"
#include "json/json.h"
#include "json/jsonfault.h"
#include "jsondoc/binaryvalue.h"

namespace hollowmere {

namespace {

std::optional<bool> boolOf(std::string_view text) {
  text = trimmed(text);
  if (equalIgnoringCase(text, "true")) return true;
  if (equalIgnoringCase(text, "false")) return false;
  return std::nullopt;
}

/// A number of JSON's grammar, or the words that stand for the doubles that JSON lacks.
std::optional<TValue> numberOf(std::string_view text) {
  text = trimmed(text);
  if (!isJsonNumber(text)) return std::nullopt;
  return parseJson(text);
}

std::optional<double> oddDouble(std::string_view text) {
  text = trimmed(text);
  if (text == "NaN") return std::nan("");
  if (text == "Infinity") return HUGE_VAL;
  if (text == "-Infinity") return -HUGE_VAL;
  return std::nullopt;
}

std::optional<TValue> editedInt(const TValue& old, std::string_view text) {
  auto number = numberOf(text);
  if (number && number->is(TKind::Int) && old.subtype() == 1) return TValue::wideInt(number->asInt());
  return number;
}

std::optional<TValue> editedDouble(std::string_view text) {
  if (const auto odd = oddDouble(text)) return TValue(*odd);
  auto number = numberOf(text);
  if (!number || !number->is(TKind::Int)) return number;
  const auto whole = static_cast<double>(number->asInt());
  // An integer that a double cannot hold would lose digits.
  constexpr std::int64_t exact = std::int64_t{1} << 53;
  return std::abs(number->asInt()) <= exact ? TValue(whole) : std::move(*number);
}

std::optional<TValue> editedDecimal(std::string_view text) {
  text = trimmed(text);
  if (!isJsonNumber(text) && !oddDouble(text)) return std::nullopt;
  return TValue::decimal(std::string(text));
}

std::optional<TValue> editedMoment(std::string_view text, const TDateTimeText& dates) {
  const auto moment = dates.parse(text);
  return moment ? std::optional(TValue::dateTime(*moment)) : std::nullopt;
}

std::optional<TValue> editedId(std::string_view text) {
  TObjectId id;
  return parseHex(trimmed(text), id) ? std::optional(TValue(id)) : std::nullopt;
}

std::optional<TValue> editedBinary(const TValue& old, std::string_view text) {
  auto bytes = text.empty() ? std::optional<std::string>("") : bytesOfText(trimmed(text));
  if (!bytes) return std::nullopt;
  return TValue::binary(std::move(*bytes), old.is(TKind::Binary) ? old.subtype() : std::uint8_t{0});
}

/// A value of that kind out of a text; nothing when the text does not suit it.
std::optional<TValue> ofKind(TKind kind, const TValue& old, std::string_view text,
                             const TDateTimeText& dates) {
  switch (kind) {
    case TKind::Text: return TValue(std::string(text));
    case TKind::Null: return text.empty() ? std::optional(TValue()) : std::nullopt;
    case TKind::Boolean:
      if (const auto truth = boolOf(text)) return TValue(*truth);
      return std::nullopt;
    case TKind::Int: return editedInt(old, text);
    case TKind::Double: return editedDouble(text);
    case TKind::Decimal: return editedDecimal(text);
    case TKind::DateTime: return editedMoment(text, dates);
    case TKind::ObjectId: return editedId(text);
    case TKind::Binary: return editedBinary(old, text);
    case TKind::List:
    case TKind::Object: break;
  }
  return std::nullopt;
}

}  // namespace

std::string scalarText(const TValue& value) {
  switch (value.kind()) {
    case TKind::Boolean: return value.asBool() ? "True" : "False";
    case TKind::Double:
      return std::isfinite(value.asDouble()) ? toJson(value) : FormatNumber(value.asDouble());
    case TKind::Binary: return value.asText().empty() ? std::string() : textForm(value);
    case TKind::Object: return std::string(objectMarker);
    case TKind::List: return std::string(listMarker);
    default: return textForm(value);
  }
}

std::string shortScalarText(const TValue& value, std::size_t limit) {
  const auto shorten = [limit](std::string text, bool more) {
    if (text.size() > limit) {
      std::size_t length = limit;
      while (length > 0 && (text[length] & 0xc0) == 0x80) --length;  // not inside of a character
      text.resize(length);
      more = true;
    }
    for (char& c : text)
      if (c == '\n' || c == '\r' || c == '\t') c = ' ';
    return more ? text + "..." : text;
  };
  if (value.is(TKind::Text)) return shorten(value.asText().substr(0, limit + 1), false);
  if (value.is(TKind::Binary) && value.asText().size() > limit)
    return shorten(textOfBytes(value.asText().substr(0, limit)), true);
  return shorten(scalarText(value), false);
}

TValue typedScalar(std::string_view text) {
  if (text.empty()) return {};
  if (text.find("&str;") != std::string_view::npos) return TValue(text);
  if (const auto truth = boolOf(text)) return TValue(*truth);
  if (auto number = numberOf(text)) return std::move(*number);
  if (auto bytes = bytesOfText(text)) return TValue::binary(std::move(*bytes));
  return TValue(text);
}

TValue editedScalar(const TValue& old, std::string_view text, const TDateTimeText& dates) {
  auto kept = ofKind(old.kind(), old, text, dates);
  return kept ? std::move(*kept) : typedScalar(text);
}

bool convertScalar(TValue& value, TKind kind, const TDateTimeText& dates) {
  if (value.is(kind)) return true;
  const std::string text = scalarText(value);
  // Nulls of every kind are alike; and what is no number becomes none.
  auto made = kind == TKind::Null ? std::optional(TValue()) : ofKind(kind, value, text, dates);
  if (!made) return false;
  value = std::move(*made);
  return true;
}

}  // namespace hollowmere

#include "connectors/mongodb/extendedjson.h"

#include <charconv>
#include <limits>
#include <optional>

#include "connectors/datetimetext.h"
#include "json/encoding.h"

namespace hollowmere {

namespace {

std::optional<std::int64_t> integerOf(const std::string& digits) {
  std::int64_t number = 0;
  const auto [end, fault] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (fault != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return number;
}

std::optional<TValue> doubleOf(const std::string& text) {
  if (text == "NaN") return TValue(std::numeric_limits<double>::quiet_NaN());
  if (text == "Infinity") return TValue(std::numeric_limits<double>::infinity());
  if (text == "-Infinity") return TValue(-std::numeric_limits<double>::infinity());
  double number = 0;
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (fault != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return TValue(number);
}

const std::string* textOf(const TObject& object, std::string_view name) {
  const TValue* member = object.find(name);
  return member && member->is(TKind::Text) ? &member->asText() : nullptr;
}

std::optional<TValue> dateOf(const TValue& inner) {
  if (inner.is(TKind::Int)) return TValue::dateTime(inner.asInt());
  if (inner.is(TKind::DateTime)) return inner;
  // Its canonical form holds a wrapper, which was read before.
  if (!inner.is(TKind::Text)) return std::nullopt;
  const auto moment = TDateTimeText("C").parse(inner.asText());
  return moment ? std::optional(TValue::dateTime(*moment)) : std::nullopt;
}

std::optional<TValue> binaryOf(const TObject& inner) {
  const std::string* base64 = textOf(inner, "base64");
  const std::string* subtype = textOf(inner, "subType");
  if (!base64 || !subtype) return std::nullopt;
  auto bytes = fromBase64(*base64);
  int number = 0;
  std::from_chars(subtype->data(), subtype->data() + subtype->size(), number, 16);
  if (!bytes || number > 255) return std::nullopt;
  return TValue::binary(std::move(*bytes), static_cast<std::uint8_t>(number));
}

/// A wrapper around a text.
std::optional<TValue> fromText(const std::string& name, const std::string& text) {
  TObjectId id;
  if (name == "$oid" && parseHex(text, id)) return TValue(id);
  if (name == "$numberDecimal") return TValue::decimal(text);
  if (name == "$numberDouble") return doubleOf(text);
  if (name == "$symbol" || name == "$code") return TValue(text);
  const auto number = integerOf(text);
  if (name == "$numberInt" && number) return TValue(*number);
  if (name == "$numberLong" && number) return TValue::wideInt(*number);
  return std::nullopt;
}

/// A wrapper around an object.
std::optional<TValue> fromParts(const std::string& name, const TObject& inner) {
  if (name == "$binary") return binaryOf(inner);
  if (name == "$timestamp") {
    const TValue* seconds = inner.find("t");
    if (seconds && seconds->is(TKind::Int) && seconds->asInt() >= 0 &&
        seconds->asInt() <= std::numeric_limits<std::uint32_t>::max())
      return TValue::dateTime(seconds->asInt() * 1000);
  }
  if (name == "$regularExpression") {
    const std::string* pattern = textOf(inner, "pattern");
    const std::string* options = textOf(inner, "options");
    if (pattern && options) return TValue("/" + *pattern + "/" + *options);
  }
  return std::nullopt;
}

std::optional<TValue> unwrapped(const TObject& object) {
  // Code with a scope has two members.
  if (object.size() == 2 && object.begin()->name == "$code" && object.contains("$scope"))
    return object.begin()->value;
  if (object.size() != 1 || !object.begin()->name.starts_with('$')) return std::nullopt;
  const auto& [name, inner] = *object.begin();
  if (name == "$date") return dateOf(inner);
  if (name == "$minKey") return TValue("MinKey");
  if (name == "$maxKey") return TValue("MaxKey");
  if (name == "$undefined") return TValue();
  if (inner.is(TKind::Text)) return fromText(name, inner.asText());
  if (inner.is(TKind::Object)) return fromParts(name, inner.asObject());
  return std::nullopt;
}

}  // namespace

TValue fromExtendedJson(TValue value) {
  if (value.is(TKind::List))
    for (TValue& element : value.asList()) element = fromExtendedJson(std::move(element));
  if (!value.is(TKind::Object)) return value;
  for (TMember& member : value.asObject()) member.value = fromExtendedJson(std::move(member.value));
  if (auto plain = unwrapped(value.asObject())) return std::move(*plain);
  return value;
}

}  // namespace hollowmere

#include "jsongrid/celltext.h"

#include <QString>
#include <algorithm>
#include <charconv>
#include <cmath>

#include "connectors/markers.h"
#include "connectors/nosqlcommon.h"
#include "connectors/textpiece.h"
#include "json/encoding.h"
#include "json/json.h"
#include "json/jsonfault.h"
#include "jsongrid/gridtexts.h"

namespace hollowmere {

namespace {

constexpr char shortened[] = "...";

/// Cuts before a character that would go beyond the limit.
std::string cut(std::string_view text, std::size_t limit) {
  if (text.size() <= limit) return std::string(text);
  std::size_t at = limit;
  while (at > 0 && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80) --at;
  return std::string(text.substr(0, at)) + shortened;
}

/// Compact JSON; stops adding elements when the limit is passed.
std::string nestedText(const TValue& value, std::size_t limit) {
  if (limit == wholeCell) return toJson(value);
  std::string out(1, value.is(TKind::List) ? '[' : '{');
  const auto separate = [&out] {
    if (out.size() > 1) out += ',';
  };
  if (value.is(TKind::List)) {
    for (const TValue& element : value.asList()) {
      if (out.size() > limit) return cut(out, limit);
      separate();
      appendJson(out, element);
    }
  } else {
    for (const TMember& member : value.asObject()) {
      if (out.size() > limit) return cut(out, limit);
      separate();
      appendJson(out, TValue(member.name));
      out += ':';
      appendJson(out, member.value);
    }
  }
  out += value.is(TKind::List) ? ']' : '}';
  return cut(out, limit);
}

std::string binaryText(const std::string& bytes, std::size_t limit) {
  const std::size_t shown = limit == wholeCell ? bytes.size() : std::min(bytes.size(), limit);
  return cut(std::string(binaryMarker) + toBase64(std::string_view(bytes).substr(0, shown)), limit);
}

TCellEdit refused(std::string_view text, const char* what) {
  constexpr std::size_t shown = 60;
  return {{}, "\"" + cut(text, shown) + "\" is not " + what + "."};
}

bool isWordOfNumbers(std::string_view text) {
  return text == "NaN" || text == "Infinity" || text == "-Infinity";
}

TCellEdit editedNumber(const TValue* before, TKind kind, std::string_view text) {
  text = trimmed(text);
  const bool word = isWordOfNumbers(text);
  if (!word && !isJsonNumber(text)) return refused(text, "a number");
  if (kind == TKind::Decimal) return {TValue::decimal(std::string(text)), {}};
  if (word) {
    const double infinity = HUGE_VAL;
    return {TValue(text == "NaN" ? std::nan("") : text.front() == '-' ? -infinity : infinity), {}};
  }
  TValue number = parseJson(text);
  if (kind == TKind::Double && number.is(TKind::Int)) return {static_cast<double>(number.asInt()), {}};
  if (number.is(TKind::Int) && before && before->is(TKind::Int) && before->subtype() != 0)
    return {TValue::wideInt(number.asInt()), {}};
  return {std::move(number), {}};
}

TCellEdit editedBoolean(std::string_view text) {
  text = trimmed(text);
  if (equalIgnoringCase(text, "true") || text == "1") return {true, {}};
  if (equalIgnoringCase(text, "false") || text == "0") return {false, {}};
  return refused(text, "True or False");
}

TCellEdit editedBinary(const TValue* before, std::string_view text) {
  if (text.empty()) return {TValue::binary({}, before ? before->subtype() : std::uint8_t{0}), {}};
  const TValue marked{text};
  auto bytes = cellBytes(&marked);
  if (!bytes) return refused(text, "binary data: \"&base64;\" and Base64");
  return {TValue::binary(std::move(*bytes), before ? before->subtype() : std::uint8_t{0}), {}};
}

TCellEdit editedObjectId(std::string_view text) {
  TObjectId id;
  if (!parseHex(trimmed(text), id)) return refused(text, "an object id: 24 hexadecimal digits");
  return {id, {}};
}

TCellEdit editedNested(std::string_view text) {
  try {
    TValue value = parseJson(text);
    if (value.isNested()) return {std::move(value), {}};
  } catch (const TJsonError&) {
    // Said below: bad text and a scalar get the same answer.
  }
  return {{}, gridtexts::invalidDocument};
}

/// A text of which nothing is known but itself.
TValue recognised(std::string_view text) {
  const std::string_view plain = trimmed(text);
  if (equalIgnoringCase(plain, "true")) return true;
  if (equalIgnoringCase(plain, "false")) return false;
  if (isJsonNumber(plain)) return parseJson(plain);
  if (!plain.empty() && (plain.front() == '{' || plain.front() == '['))
    if (TCellEdit nested = editedNested(plain); nested.refusal.empty()) return std::move(nested.value);
  return text;
}

int rank(const TValue* value) {
  if (!value) return 0;
  switch (value->kind()) {
    case TKind::Null: return 1;
    case TKind::Boolean: return 2;
    case TKind::Int:
    case TKind::Double:
    case TKind::Decimal: return 3;
    case TKind::DateTime: return 4;
    default: return 5;
  }
}

double asNumber(const TValue& value) {
  if (value.is(TKind::Int)) return static_cast<double>(value.asInt());
  if (value.is(TKind::Double)) return value.asDouble();
  double number = 0;
  const std::string& digits = value.asText();
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

template <typename T>
int order(const T& a, const T& b) {
  return a < b ? -1 : b < a ? 1 : 0;
}

/// NaN stands before all numbers: an ordering must know where to put it.
int orderNumbers(const TValue& a, const TValue& b) {
  if (a.is(TKind::Int) && b.is(TKind::Int)) return order(a.asInt(), b.asInt());
  const double x = asNumber(a), y = asNumber(b);
  if (std::isnan(x) || std::isnan(y)) return order(!std::isnan(x), !std::isnan(y));
  return order(x, y);
}

}  // namespace

std::string cellText(const TValue* value, std::size_t limit) {
  if (!value) return {};
  switch (value->kind()) {
    case TKind::Boolean: return value->asBool() ? "True" : "False";
    case TKind::Double: return std::isfinite(value->asDouble()) ? toJson(*value) : textForm(*value);
    case TKind::Text:
    case TKind::Decimal: return cut(value->asText(), limit);
    case TKind::Binary: return binaryText(value->asText(), limit);
    case TKind::List:
    case TKind::Object: return nestedText(*value, limit);
    default: return textForm(*value);
  }
}

std::string cleanText(std::string_view bytes) {
  if (isUtf8(bytes)) return std::string(bytes);
  return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size())).toStdString();
}

std::string cleanCellText(const TValue* value, std::size_t limit) {
  std::string text = cellText(value, limit);
  return isUtf8(text) ? text : cleanText(text);
}

TCellEdit editedCell(const TValue* before, TKind columnKind, std::string_view text,
                     const TDateTimeText& dates) {
  const bool known = before && !before->isNull();
  const TKind kind = known ? before->kind() : columnKind;
  // Nothing in the place of nothing is no edit.
  if (!known && text.empty()) return {};
  switch (kind) {
    case TKind::Null: return {recognised(text), {}};
    case TKind::Boolean: return editedBoolean(text);
    case TKind::Int:
    case TKind::Double:
    case TKind::Decimal: return editedNumber(before, kind, text);
    case TKind::Text: return {text, {}};
    case TKind::DateTime:
      if (const auto moment = dates.parse(text)) return {TValue::dateTime(*moment), {}};
      return refused(text, "a date and time");
    case TKind::Binary: return editedBinary(before, text);
    case TKind::ObjectId: return editedObjectId(text);
    case TKind::List:
    case TKind::Object: return editedNested(text);
  }
  return {text, {}};
}

int compareCells(const TValue* a, const TValue* b) {
  const int rankA = rank(a), rankB = rank(b);
  if (rankA != rankB) return rankA - rankB;
  switch (rankA) {
    case 0:
    case 1: return 0;
    case 2: return order(a->asBool(), b->asBool());
    case 3: return orderNumbers(*a, *b);
    case 4: return order(a->asMilliseconds(), b->asMilliseconds());
    default: break;
  }
  if (a->is(TKind::Text) && b->is(TKind::Text)) return a->asText().compare(b->asText());
  return cellText(a).compare(cellText(b));
}

bool cellContains(const TValue* value, std::string_view sought) {
  const auto contains = [&](std::string_view text) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return std::search(text.begin(), text.end(), sought.begin(), sought.end(),
                       [&](char a, char b) { return lower(a) == b; }) != text.end();
  };
  if (!value) return false;
  return value->is(TKind::Text) ? contains(value->asText()) : contains(cellText(value));
}

std::optional<std::string> cellBytes(const TValue* value) {
  if (!value) return std::nullopt;
  if (value->is(TKind::Binary)) return value->asText();
  if (!value->is(TKind::Text) || !hasBinaryMarker(value->asText())) return std::nullopt;
  return fromBase64(std::string_view(value->asText()).substr(binaryMarker.size()));
}

TValue binaryCell(const TValue* before, TKind columnKind, std::string bytes) {
  const bool known = before && !before->isNull();
  if ((known ? before->kind() : columnKind) == TKind::Binary)
    return TValue::binary(std::move(bytes), known ? before->subtype() : std::uint8_t{0});
  return std::string(binaryMarker) + toBase64(bytes);
}

}  // namespace hollowmere

#include "jsongrid/celltext.h"

#include <QString>
#include <algorithm>
#include <charconv>
#include <cmath>

#include "connectors/textpiece.h"
#include "json/json.h"
#include "jsondoc/binaryvalue.h"
#include "jsondoc/scalartext.h"
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
  if (bytes.empty()) return {};
  const std::size_t shown = limit == wholeCell ? bytes.size() : std::min(bytes.size(), limit);
  return cut(textOfBytes(std::string_view(bytes).substr(0, shown)), limit);
}

TCellEdit refused(std::string_view text, const char* what) {
  constexpr std::size_t shown = 60;
  return {{}, "\"" + cut(text, shown) + "\" is not " + what + "."};
}

/// What a value of that kind is, to say that a text is none.
const char* called(TKind kind) {
  switch (kind) {
    case TKind::Boolean: return "True or False";
    case TKind::DateTime: return "a date and time";
    case TKind::Binary: return "binary data: \"&base64;\" and Base64";
    case TKind::ObjectId: return "an object id: 24 hexadecimal digits";
    default: return "a number";
  }
}

bool isNumber(TKind kind) { return kind == TKind::Int || kind == TKind::Double || kind == TKind::Decimal; }

/// A scalar that is no text. An empty text empties it.
TCellEdit editedTyped(const TValue& before, std::string_view text, const TDateTimeText& dates) {
  const TKind kind = before.kind();
  TValue value = editedScalar(before, text, dates);
  if (value.is(kind) || (isNumber(kind) && isNumber(value.kind()))) return {std::move(value), {}};
  if (text.empty()) return {};
  return refused(text, called(kind));
}

/// The first value of a cell in a column of such values.
TCellEdit firstOfKind(TKind kind, std::string_view text, const TDateTimeText& dates) {
  TValue value{text};
  if (convertScalar(value, kind, dates)) return {std::move(value), {}};
  return refused(text, called(kind));
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
  if (!plain.empty() && (plain.front() == '{' || plain.front() == '['))
    if (TCellEdit nested = editedNested(plain); nested.refusal.empty()) return std::move(nested.value);
  return typedScalar(text);
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
    case TKind::Text:
    case TKind::Decimal: return cut(value->asText(), limit);
    case TKind::Binary: return binaryText(value->asText(), limit);
    case TKind::List:
    case TKind::Object: return nestedText(*value, limit);
    default: return scalarText(*value);
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
    case TKind::Text: return {text, {}};
    case TKind::List:
    case TKind::Object: return editedNested(text);
    default: return known ? editedTyped(*before, text, dates) : firstOfKind(kind, text, dates);
  }
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
  return value ? bytesOfValue(*value) : std::nullopt;
}

TValue binaryCell(const TValue* before, TKind columnKind, std::string bytes) {
  const bool known = before && !before->isNull();
  if ((known ? before->kind() : columnKind) == TKind::Binary)
    return TValue::binary(std::move(bytes), known ? before->subtype() : std::uint8_t{0});
  return textOfBytes(bytes);
}

}  // namespace hollowmere

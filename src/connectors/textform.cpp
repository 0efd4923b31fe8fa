#include <charconv>
#include <cmath>

#include "connectors/markers.h"
#include "connectors/nosqlcommon.h"
#include "json/encoding.h"
#include "json/json.h"

namespace hollowmere {

std::string FormatNumber(double number) {
  if (std::isnan(number)) return "NaN";
  if (std::isinf(number)) return number < 0 ? "-Infinity" : "Infinity";
  constexpr int decimals = 6, leastDecimals = 2;
  char digits[400];  // the largest double has 309 digits before the point
  const auto end =
      std::to_chars(digits, digits + sizeof digits, number, std::chars_format::fixed, decimals).ptr;
  std::string text(digits, end);
  for (int left = decimals; left > leastDecimals && text.back() == '0'; --left) text.pop_back();
  return text == "-0.00" ? "0.00" : text;
}

std::string textForm(const TValue& value) {
  switch (value.kind()) {
    case TKind::Null: return {};
    case TKind::Boolean: return value.asBool() ? "true" : "false";
    case TKind::Int: return std::to_string(value.asInt());
    case TKind::Double: return FormatNumber(value.asDouble());
    case TKind::Text:
    case TKind::Decimal: return value.asText();
    case TKind::DateTime: return toIsoText(value.asMilliseconds());
    case TKind::Binary: return std::string(binaryMarker) + toBase64(value.asText());
    case TKind::ObjectId: return toHex(value.asObjectId());
    case TKind::List:
    case TKind::Object: break;
  }
  return toJson(value);
}

}  // namespace hollowmere

#include <array>
#include <cstdint>
#include <utility>

#include "connectors/nosqlcommon.h"

namespace hollowmere {

std::string_view VarTypeName(int code) {
  using TEntry = std::pair<int, std::string_view>;
  static constexpr std::array<TEntry, 22> names{{
      {0, "varEmpty"},  {1, "varNull"},        {2, "varSmallInt"}, {3, "varInteger"},  {4, "varSingle"},
      {5, "varDouble"}, {6, "varCurrency"},    {7, "varDate"},     {8, "varOleStr"},   {9, "varDispatch"},
      {10, "varError"}, {11, "varBoolean"},    {12, "varVariant"}, {13, "varUnknown"}, {17, "varByte"},
      {18, "varWord"},  {19, "varLongWord"},   {20, "varInt64"},   {72, "varStrArg"},  {256, "varString"},
      {257, "varAny"},  {4095, "varTypeMask"},
  }};
  for (const auto& [known, name] : names)
    if (known == (code & 0xFFF)) return name;
  return "varString";
}

std::string_view VarTypeName(const TValue& value) {
  switch (value.kind()) {
    case TKind::Null: return "varNull";
    case TKind::Boolean: return "varBoolean";
    case TKind::Int: return std::in_range<std::int32_t>(value.asInt()) ? "varInteger" : "varInt64";
    case TKind::Double: return "varDouble";
    case TKind::DateTime: return "varDate";
    case TKind::List:
    case TKind::Object: return "varUnknown";
    case TKind::Text:
    case TKind::Binary:
    case TKind::ObjectId:
    case TKind::Decimal: break;
  }
  return "varString";
}

}  // namespace hollowmere

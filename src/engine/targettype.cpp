#include "engine/targettype.h"

#include <array>
#include <utility>

namespace hollowmere {

namespace {

constexpr std::array<std::pair<TTargetType, std::string_view>, 11> texts{{
    {TTargetType::String, "String"},
    {TTargetType::Number, "Number"},
    {TTargetType::Boolean, "Boolean"},
    {TTargetType::DateTime, "DateTime"},
    {TTargetType::Binary, "Binary"},
    {TTargetType::DataSourceObject, "Data Source (JSON Object)"},
    {TTargetType::DataSourceList, "Data Source (JSON List)"},
    {TTargetType::JsonObject, "JSON Object"},
    {TTargetType::JsonList, "JSON List"},
    {TTargetType::JsonFromXml, "JSON from XML"},
    {TTargetType::LinkedData, "Linked Data"},
}};

}  // namespace

std::string_view targetTypeText(TTargetType type) {
  for (const auto& [kind, text] : texts)
    if (kind == type) return text;
  return {};
}

std::optional<TTargetType> targetTypeFromText(std::string_view text) {
  for (const auto& [kind, known] : texts)
    if (known == text) return kind;
  return std::nullopt;
}

}  // namespace hollowmere

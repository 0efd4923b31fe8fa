#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace hollowmere {

/// What a mapping node makes of its source; docs and project files use the texts.
enum class TTargetType {
  String,
  Number,
  Boolean,
  DateTime,
  Binary,
  DataSourceObject,
  DataSourceList,
  JsonObject,
  JsonList,
  JsonFromXml,
  LinkedData,
};

/// In the order in which they are offered.
inline constexpr std::array allTargetTypes = {
    TTargetType::String,         TTargetType::Number,     TTargetType::Boolean,
    TTargetType::DateTime,       TTargetType::Binary,     TTargetType::DataSourceObject,
    TTargetType::DataSourceList, TTargetType::JsonObject, TTargetType::JsonList,
    TTargetType::JsonFromXml,    TTargetType::LinkedData};

/// The exact text, "Data Source (JSON List)" for example, and back; nothing for another text.
std::string_view targetTypeText(TTargetType type);
std::optional<TTargetType> targetTypeFromText(std::string_view text);

/// Whether the node's source names data sources instead of a field.
inline bool isDataSource(TTargetType type) {
  return type == TTargetType::DataSourceObject || type == TTargetType::DataSourceList ||
         type == TTargetType::LinkedData;
}

}  // namespace hollowmere

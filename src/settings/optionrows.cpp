#include "settings/optionrows.h"

#include <algorithm>
#include <array>
#include <cassert>

namespace hollowmere {

namespace {

constexpr std::string_view others = "General";
constexpr std::array<std::string_view, 3> groups = {"Data Grid Properties", "Default Project Settings", ""};

/// A text setting that stands for a yes or no.
bool isYesNo(const TSetting& setting) { return setting.name == "showJsonIcon"; }

TOptionKind kindOf(const TSetting& setting) {
  if (std::holds_alternative<bool TSettings::*>(setting.member) || isYesNo(setting))
    return TOptionKind::Boolean;
  if (std::holds_alternative<std::int64_t TSettings::*>(setting.member)) return TOptionKind::Number;
  return setting.name == "logFile" || setting.name == "discFile" ? TOptionKind::SaveFile : TOptionKind::Text;
}

TOptionRow rowOf(const TSettings& settings, const TSetting& setting) {
  std::string text = settingText(settings, setting);
  if (isYesNo(setting)) text = text == "Y" ? "True" : "False";
  return {setting.name,    setting.group.empty() ? others : setting.group,
          setting.caption, kindOf(setting),
          std::move(text), setting.lowest,
          setting.highest};
}

std::string wanted(const TSetting& setting) {
  if (kindOf(setting) == TOptionKind::Boolean) return "True or False";
  return "a whole number from " + std::to_string(setting.lowest) + " to " + std::to_string(setting.highest);
}

}  // namespace

std::vector<TOptionRow> optionRows(const TSettings& settings) {
  std::vector<TOptionRow> rows;
  for (const std::string_view group : groups)
    for (const TSetting& setting : settingTable())
      if (setting.group == group && !setting.caption.empty()) rows.push_back(rowOf(settings, setting));
  return rows;
}

std::string setOption(TSettings& settings, std::string_view name, std::string_view text) {
  const auto setting = std::ranges::find(settingTable(), name, &TSetting::name);
  assert(setting != settingTable().end());
  if (isYesNo(*setting)) {
    settings.showJsonIcon = text == "True" ? "Y" : "N";
    return {};
  }
  if (setSettingText(settings, *setting, text)) return {};
  return std::string(setting->caption) + " must be " + wanted(*setting) + ".";
}

}  // namespace hollowmere

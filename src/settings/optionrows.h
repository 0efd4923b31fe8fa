#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "settings/settings.h"

namespace hollowmere {

enum class TOptionKind { Text, Number, Boolean, SaveFile };

/// One row of the options dialog.
struct TOptionRow {
  std::string_view name;  ///< of the setting
  std::string_view group;
  std::string_view caption;
  TOptionKind kind;
  std::string text;  ///< booleans "True" and "False", "Y" and "N" as well
  std::int64_t lowest;
  std::int64_t highest;
};

/// The settings that the dialog shows, those of a group together.
std::vector<TOptionRow> optionRows(const TSettings& settings);
/// Takes the text of a row back. Empty, or why it is no value of the setting; then nothing is changed.
std::string setOption(TSettings& settings, std::string_view name, std::string_view text);

}  // namespace hollowmere

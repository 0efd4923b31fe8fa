#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "settings/datafolder.h"
#include "settings/prompt.h"

class QSettings;

namespace hollowmere {

/// The user's settings. A fresh one holds the defaults, but for the two files, which follow the data folder.
struct TSettings {
  std::string softwareVersion = HOLLOWMERE_VERSION;
  std::string warnVersion = HOLLOWMERE_VERSION;  ///< newest version that the user was told about
  std::string mongoDBshellExe;
  bool rowAutoHeight = false;
  bool colAutoWidth = true;
  bool ignoreNulls = true;
  std::int64_t fetchSize = 100;   ///< rows fetched per page in the result grids
  std::int64_t fetchLimit = 100;  ///< default of a new project
  std::int64_t httpTimeout = 5;   ///< seconds
  std::int64_t loadDegree = 1;
  std::int64_t loadNum = 0;
  std::int64_t discardNum = 0;
  std::int64_t skipNum = 0;
  std::string logFile;
  std::string discFile;
  bool showConnWindow = false;
  bool bit64Warn = true;
  std::int64_t bufLen = 1000000;     ///< bytes
  std::int64_t sqlMemoHeight = 150;  ///< pixels
  std::int64_t maxfetchSize = 100000;
  std::string showJsonIcon = "N";   ///< "Y" or "N"
  std::int64_t shellTimeout = 300;  ///< seconds that a run of MongoDB's shell may take

  bool operator==(const TSettings&) const = default;
};

/// Every setting at its default.
TSettings defaultSettings(const TDataFolder& folder);

using TSettingMember = std::variant<std::string TSettings::*, bool TSettings::*, std::int64_t TSettings::*>;

/// One line of the table of settings.
struct TSetting {
  std::string_view name;     ///< of the stored value
  TSettingMember member;     ///< gives the type, too
  std::string_view group;    ///< heading in the options dialog
  std::string_view caption;  ///< in the options dialog; empty: not shown there
  std::int64_t lowest = 0;   ///< bounds of an integer
  std::int64_t highest = 2147483647;
};

/// All settings in the order in which they are loaded.
std::span<const TSetting> settingTable();

/// A setting as the options dialog shows it: booleans "True" and "False".
std::string settingText(const TSettings& settings, const TSetting& setting);
/// Takes a text of that form (booleans also 1 and 0, letter case ignored). False, and nothing changed, when
/// it is not a value of the setting's type or beyond its bounds.
bool setSettingText(TSettings& settings, const TSetting& setting, std::string_view text);

/// The platform's store of this user's settings: the registry key on Windows, a configuration file
/// elsewhere; HOLLOWMERE_SETTINGS moves it to that file (INI form). Windows keep their placement in groups
/// of it.
std::unique_ptr<QSettings> openSettingsStore();

/// Fills the settings from the store; one that is missing there is first written with what settings holds.
/// A value of a wrong type is reported and left as it was in settings; nothing throws.
void loadSettings(TSettings& settings, QSettings& store, TPrompt& prompt);
/// Writes all of them. A store that cannot be written is reported.
void saveSettings(const TSettings& settings, QSettings& store, TPrompt& prompt);

}  // namespace hollowmere

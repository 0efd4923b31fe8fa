#include "app/program.h"

#include <QSettings>

#include "app/stores.h"

namespace hollowmere {

TProgram::TProgram(TPrompt& prompt) : folder(TDataFolder::open()), settings(defaultSettings(folder)) {
  loadSettings(settings, *openSettingsStore(), prompt);
  addStores(stores);
}

bool IsBatchMode(const std::vector<std::string>& arguments, std::string& projectFile) {
  constexpr std::string_view keyword = "batchmode";
  if (arguments.size() != 2) return false;
  bool found = false;
  if (equalIgnoringCase(arguments[0], keyword)) {
    projectFile = arguments[1];
    found = true;
  }
  // Tested last, so it wins when both are the keyword.
  if (equalIgnoringCase(arguments[1], keyword)) {
    projectFile = arguments[0];
    found = true;
  }
  return found;
}

}  // namespace hollowmere

#pragma once

#include <string>
#include <vector>

#include "connectors/datetimetext.h"
#include "connectors/storeregistry.h"
#include "project/projectfile.h"
#include "settings/cipher.h"
#include "settings/clock.h"
#include "settings/datafolder.h"
#include "settings/prompt.h"
#include "settings/safefile.h"
#include "settings/settings.h"

namespace hollowmere {

/// What every program of ours stands on, put together: settings, data folder, stores, cipher. Made once,
/// on the main thread.
struct TProgram {
  /// Loads the settings; what is wrong with them goes through the prompt. Throws TDataFolderError.
  explicit TProgram(TPrompt& prompt);

  TDataFolder folder;
  TSettings settings;
  TStoreRegistry stores;
  TCipher cipher;
  TDiskFiles files;
  TSystemClock clock;
  TDateTimeText dates;

  [[nodiscard]] TProjectFile projectFile() { return {cipher, files}; }
};

/// The project file that the arguments (without the program's own name) ask to run unattended: exactly
/// two, one of them the keyword "batchmode" in any letter case. False: start with windows.
bool IsBatchMode(const std::vector<std::string>& arguments, std::string& projectFile);

}  // namespace hollowmere

#pragma once

#include <functional>
#include <optional>
#include <string>

#include "connectors/loadtypes.h"
#include "settings/prompt.h"

namespace hollowmere {

enum class TShellKind {
  Legacy,  ///< "mongo"
  Today,   ///< "mongosh"
};

/// A shell on this machine.
struct TShellProgram {
  std::string path;
  TShellKind kind = TShellKind::Legacy;
  std::string version;  ///< "4.2.0"
};

/// Asks a program for its version, for some seconds at most. Throws std::runtime_error with a text for the
/// user: not there, not executable, no MongoDB shell, too old.
TShellProgram recogniseShell(const std::string& path, const TStopFlag* stop = nullptr);

/// Lets a person choose a file: title and filter ("caption|pattern") to path; nothing when it was cancelled.
using TFileChoice =
    std::function<std::optional<std::string>(const std::string& title, const std::string& filter)>;

/// The shell's path as the settings hold it; while they hold none the user is told and asked for it, and the
/// choice is kept there. False when the user names none, which the user is told too: the operation ends.
bool findShell(std::string& settingsPath, TPrompt& prompt, const TFileChoice& choose);

}  // namespace hollowmere

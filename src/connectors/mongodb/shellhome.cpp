#include "connectors/mongodb/shellhome.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include <stdlib.h>

namespace hollowmere {

TShellHome::TShellHome() {
  std::error_code fault;
  path_ = (std::filesystem::temp_directory_path(fault) / "hollowmere-shell-XXXXXX").string();
  if (fault || !mkdtemp(path_.data()))
    throw std::runtime_error("Unable to make a folder for the MongoDB shell: " + path_);
  // It would otherwise tell its maker about every command, and keep a log of them.
  const std::filesystem::path config = std::filesystem::path(path_) / ".mongodb" / "mongosh";
  std::filesystem::create_directories(config, fault);
  std::ofstream(config / "config") << R"({"enableTelemetry":false,"disableLogging":true,"historyLength":0})";
}

TShellHome::~TShellHome() {
  std::error_code fault;
  std::filesystem::remove_all(path_, fault);
}

std::map<std::string, std::string> TShellHome::environment() const {
  return {{"HOME", path_}, {"XDG_CONFIG_HOME", path_}, {"NODE_OPTIONS", ""}, {"NO_COLOR", "1"}};
}

}  // namespace hollowmere

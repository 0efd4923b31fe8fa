#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace hollowmere {

/// The data folder cannot be used. what() names the folder and the reason.
class TDataFolderError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The folder of the program's working files, with its subfolders data, logs and templates. All of them
/// exist and can be written to while there is such an object. Paths are UTF-8, separators "/".
class TDataFolder {
 public:
  /// The folder that HOLLOWMERE_DATA names, else the usual one: on Windows the common application data
  /// folder, elsewhere the user's own data folder, + TamsburySoftware/Hollowmere. Throws TDataFolderError.
  static TDataFolder open();
  /// Uses that folder; makes what is missing. Throws TDataFolderError.
  explicit TDataFolder(const std::string& root);

  /// With a separator at its end.
  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] std::string file(std::string_view subfolder, std::string_view name) const;

  [[nodiscard]] std::string logFile() const { return file("logs", "log.txt"); }
  [[nodiscard]] std::string discardFile() const { return file("logs", "discard.txt"); }
  [[nodiscard]] std::string connectionListFile() const { return file("templates", "connlist.dat"); }
  [[nodiscard]] std::string recentProjectsFile() const { return file("templates", "projectFiles.txt"); }

 private:
  std::string path_;
};

}  // namespace hollowmere

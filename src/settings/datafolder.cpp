#include "settings/datafolder.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <filesystem>
#include <system_error>

namespace hollowmere {

namespace {

/// The one place where platforms differ. Outside Windows nothing like the common application data folder is
/// writable for users, and what the program keeps is for its user's eyes only: each user has a folder.
QString commonFolder() {
#ifdef Q_OS_WIN
  return qEnvironmentVariable("ProgramData");
#else
  return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
#endif
}

std::filesystem::path nativePath(const QString& path) { return path.toStdU16String(); }

[[noreturn]] void fail(const QString& folder, const std::string& reason) {
  throw TDataFolderError("Unable to use the data folder " + folder.toStdString() + ": " + reason);
}

void makeFolder(const QString& folder) {
  std::error_code error;
  const bool made = std::filesystem::create_directories(nativePath(folder), error);
  if (error) fail(folder, error.message());
  if (made) std::filesystem::permissions(nativePath(folder), std::filesystem::perms::owner_all, error);
  if (!QFileInfo(folder).isWritable()) fail(folder, "it is not writable");
}

}  // namespace

TDataFolder TDataFolder::open() {
  const QString named = qEnvironmentVariable("HOLLOWMERE_DATA");
  if (!named.isEmpty()) return TDataFolder(named.toStdString());
  const QString common = commonFolder();
  if (common.isEmpty()) throw TDataFolderError("Unable to find the folder of application data.");
  return TDataFolder((common + "/TamsburySoftware/Hollowmere").toStdString());
}

TDataFolder::TDataFolder(const std::string& root) {
  const QString folder = QDir::cleanPath(QDir(QString::fromStdString(root)).absolutePath());
  makeFolder(folder);
  for (const char* subfolder : {"data", "logs", "templates"}) makeFolder(folder + "/" + subfolder);
  path_ = folder.toStdString();
  if (path_.back() != '/') path_ += '/';
}

std::string TDataFolder::file(std::string_view subfolder, std::string_view name) const {
  return path_ + std::string(subfolder) + "/" + std::string(name);
}

}  // namespace hollowmere

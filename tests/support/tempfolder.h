#pragma once

#include <QFile>
#include <QTemporaryDir>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace hollowmere {

/// A folder of the test's own; gone with it.
class TTempFolder {
 public:
  [[nodiscard]] std::string file(const std::string& name) const {
    return folder_.filePath(QString::fromStdString(name)).toStdString();
  }
  /// How many files and folders stand in it.
  [[nodiscard]] std::ptrdiff_t entries() const {
    const std::filesystem::directory_iterator content(folder_.path().toStdString());
    return std::distance(begin(content), end(content));
  }

 private:
  QTemporaryDir folder_;
};

inline void writeBytes(const std::string& path, const std::string& bytes) {
  // A file that is cut and filled again is brought to the disk at once by some file systems: slow in loops.
  std::filesystem::remove(path);
  std::ofstream(path, std::ios::binary) << bytes;
}

inline std::string readBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The nine permission bits.
inline unsigned permissionsOf(const std::string& path) {
  return static_cast<unsigned>(std::filesystem::status(path).permissions()) & 0777U;
}

}  // namespace hollowmere

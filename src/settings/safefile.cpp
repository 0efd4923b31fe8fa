#include "settings/safefile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>

namespace hollowmere {

namespace {

constexpr std::size_t chunkBytes = 64 * 1024;
constexpr auto ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;

class TDiskFile : public TSafeFile {
 public:
  explicit TDiskFile(const std::string& path) : path_(path), file_(QString::fromStdString(path)) {
    // The permissions stand before the first byte does: nobody can open the file in between.
    if (!file_.open(QIODevice::WriteOnly) || !file_.setPermissions(ownerOnly)) fail();
  }

  void write(std::string_view bytes) override {
    const auto size = static_cast<qint64>(bytes.size());
    if (file_.write(bytes.data(), size) != size) fail();
  }

  void commit() override {
    if (!file_.commit()) fail();
  }

 private:
  [[noreturn]] void fail() const {
    throw TFileError("Unable to write file", path_, file_.errorString().toStdString());
  }

  std::string path_;
  QSaveFile file_;
};

}  // namespace

std::unique_ptr<TSafeFile> TDiskFiles::create(const std::string& path) {
  return std::make_unique<TDiskFile>(path);
}

bool fileExists(const std::string& path) { return QFileInfo(QString::fromStdString(path)).isFile(); }

std::string readWholeFile(const std::string& path, std::uint64_t limit) {
  const auto fail = [&path](const std::string& reason) {
    throw TFileError("Unable to read file", path, reason);
  };
  QFile file(QString::fromStdString(path));
  // Opening a pipe or a device could wait for ever.
  if (file.exists() && !fileExists(path)) fail("it is not a file");
  if (!file.open(QIODevice::ReadOnly)) fail(file.errorString().toStdString());
  std::string bytes;
  QByteArray part;
  do {
    part = file.read(static_cast<qint64>(chunkBytes));
    bytes.append(part.constData(), static_cast<std::size_t>(part.size()));
  } while (!part.isEmpty() && bytes.size() <= limit);
  if (file.error() != QFileDevice::NoError) fail(file.errorString().toStdString());
  if (bytes.size() > limit) fail("it is larger than " + std::to_string(limit) + " bytes");
  return bytes;
}

void writeWholeFile(TSafeFiles& files, const std::string& path, std::string_view bytes) {
  const auto file = files.create(path);
  for (std::size_t at = 0; at < bytes.size(); at += chunkBytes) file->write(bytes.substr(at, chunkBytes));
  file->commit();
}

std::string moveAside(const std::string& path) {
  constexpr int attempts = 10000;
  QFile file(QString::fromStdString(path));
  for (int number = 1; number <= attempts; ++number) {
    const std::string name = path + (number == 1 ? ".bad" : ".bad" + std::to_string(number));
    if (QFileInfo::exists(QString::fromStdString(name))) continue;
    // Renaming never replaces a file, so one that has just come up is kept too.
    if (file.rename(QString::fromStdString(name))) return name;
    if (!QFileInfo::exists(QString::fromStdString(name)))
      throw TFileError("Unable to rename file", path, file.errorString().toStdString());
  }
  throw TFileError("Unable to rename file", path, "there is no free name beside it");
}

}  // namespace hollowmere

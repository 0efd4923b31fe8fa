#include "settings/appendfile.h"

#ifdef Q_OS_UNIX
#include <sys/file.h>
#endif

namespace hollowmere {

namespace {

/// Holds a file alone as long as it is open. On Windows an open file's share mode already does that.
bool holdAlone([[maybe_unused]] QFile& file) {
#ifdef Q_OS_UNIX
  return flock(file.handle(), LOCK_EX | LOCK_NB) == 0;
#else
  return true;
#endif
}

}  // namespace

std::string TAppendFile::open(const std::string& name) {
  name_ = name;
  if (name.empty()) return "no file name is given";
  file_.setFileName(QString::fromStdString(name));
  const auto ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
  if (!file_.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered, ownerOnly))
    return file_.errorString().toStdString();
  if (holdAlone(file_)) return {};
  file_.close();
  return "the file is in use by another run";
}

std::string TAppendFile::append(const std::string& text) {
  const qint64 before = file_.size();
  const std::string lines = text + '\n';
  std::size_t written = 0;
  while (written < lines.size()) {
    const qint64 put = file_.write(lines.data() + written, static_cast<qint64>(lines.size() - written));
    if (put <= 0) {
      const std::string reason = file_.errorString().toStdString();
      if (written > 0) file_.resize(before);
      return reason.empty() ? "the file takes no more bytes" : reason;
    }
    written += static_cast<std::size_t>(put);
  }
  return {};
}

}  // namespace hollowmere

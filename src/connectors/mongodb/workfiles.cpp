#include "connectors/mongodb/workfiles.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "settings/safefile.h"

namespace hollowmere {

namespace {

[[noreturn]] void fail(const std::string& path) {
  throw TFileError("Unable to write file", path, std::strerror(errno));
}

bool exists(const std::string& path) {
  struct stat found {};
  return lstat(path.c_str(), &found) == 0;
}

/// Whether a run that goes on holds the command file.
bool isHeld(const std::string& commandFile) {
  const int file = open(commandFile.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
  if (file < 0) return false;
  const bool held = flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  close(file);
  return held;
}

/// Two runs do not choose their number at the same time.
class TFolderLock {
 public:
  explicit TFolderLock(const std::string& folder)
      : folder_(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (folder_ < 0 || flock(folder_, LOCK_EX) != 0) fail(folder);
  }
  ~TFolderLock() { close(folder_); }
  TFolderLock(const TFolderLock&) = delete;
  TFolderLock& operator=(const TFolderLock&) = delete;

 private:
  int folder_;
};

void writeAll(int file, const std::string& path, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t put = write(file, bytes.data(), bytes.size());
    if (put < 0 && errno != EINTR) fail(path);
    if (put > 0) bytes.remove_prefix(static_cast<std::size_t>(put));
  }
}

}  // namespace

TWorkFiles::TWorkFiles(const std::string& folder) : folder_(folder) {
  const TFolderLock lock(folder);
  passStale("parse", ".cmd");
  passStale("out", ".json");
  passStale("run", ".js");
  claim();
}

TWorkFiles::~TWorkFiles() {
  for (const std::string& file : {runFile(), outFile(), commandFile()}) unlink(path(file).c_str());
  close(lock_);
}

std::string TWorkFiles::name(const char* stem, const char* ending) const {
  return stem + std::to_string(number_) + ending;
}

/// A number that is passed gives up all of its files.
void TWorkFiles::passStale(const char* stem, const char* ending) {
  while (true) {
    if (!isHeld(path(commandFile()))) {
      if (!exists(path(name(stem, ending)))) return;
      for (const std::string& file : {commandFile(), outFile(), runFile()})
        if (exists(path(file)) && unlink(path(file).c_str()) != 0) fail(path(file));
    }
    ++number_;
  }
}

/// Makes the command file and locks it.
void TWorkFiles::claim() {
  const std::string file = path(commandFile());
  lock_ = open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (lock_ < 0 || flock(lock_, LOCK_EX | LOCK_NB) != 0) fail(file);
}

void TWorkFiles::writeCommand(std::string_view bytes) const { writeAll(lock_, path(commandFile()), bytes); }

void TWorkFiles::writeScript(std::string_view bytes) const {
  const std::string file = path(runFile());
  const int made = open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (made < 0) fail(file);
  try {
    writeAll(made, file, bytes);
  } catch (...) {
    close(made);
    throw;
  }
  close(made);
}

}  // namespace hollowmere

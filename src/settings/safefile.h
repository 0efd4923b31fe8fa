#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace hollowmere {

/// A file that cannot be read or written. what() names the file and the reason.
class TFileError : public std::runtime_error {
 public:
  /// action as in "Unable to read file".
  TFileError(const std::string& action, const std::string& path, const std::string& reason)
      : std::runtime_error(action + " " + path + ": " + reason), path_(path), reason_(reason) {}

  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] const std::string& reason() const { return reason_; }

 private:
  std::string path_;
  std::string reason_;
};

/// A file while it is written. Nothing is seen under its name until commit(); without that the destructor
/// leaves the file of that name as it was. Both calls throw TFileError.
class TSafeFile {
 public:
  virtual ~TSafeFile() = default;
  virtual void write(std::string_view bytes) = 0;
  virtual void commit() = 0;
};

/// Makes files that are written whole.
class TSafeFiles {
 public:
  virtual ~TSafeFiles() = default;
  /// Readable and writable by its owner only. Throws TFileError.
  virtual std::unique_ptr<TSafeFile> create(const std::string& path) = 0;
};

/// Files of the machine.
class TDiskFiles : public TSafeFiles {
 public:
  std::unique_ptr<TSafeFile> create(const std::string& path) override;
};

/// What no file that is read whole exceeds, in bytes.
inline constexpr std::uint64_t wholeFileLimit = 256U * 1024 * 1024;

/// Whether there is a regular file of that name.
bool fileExists(const std::string& path);

/// The bytes of a file. Throws TFileError, also when the file is larger than the limit.
std::string readWholeFile(const std::string& path, std::uint64_t limit = wholeFileLimit);

/// Replaces a file, or leaves it as it was and throws TFileError.
void writeWholeFile(TSafeFiles& files, const std::string& path, std::string_view bytes);

/// Renames a file to the first free of path + ".bad", ".bad2", ... and gives that name. Throws TFileError.
std::string moveAside(const std::string& path);

}  // namespace hollowmere

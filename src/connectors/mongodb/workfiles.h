#pragma once

#include <string>
#include <string_view>

namespace hollowmere {

/// The three work files of one run of a shell: "parse" + N + ".cmd", "out" + N + ".json", "run" + N + ".js",
/// with the first number that none of them has; stale ones that are met on the way are deleted, those of
/// another run that is going on are not. All go with this object.
class TWorkFiles {
 public:
  /// folder: with a separator at its end. Throws TFileError.
  explicit TWorkFiles(const std::string& folder);
  ~TWorkFiles();
  TWorkFiles(const TWorkFiles&) = delete;
  TWorkFiles& operator=(const TWorkFiles&) = delete;

  [[nodiscard]] std::string commandFile() const { return name("parse", ".cmd"); }
  [[nodiscard]] std::string outFile() const { return name("out", ".json"); }
  [[nodiscard]] std::string runFile() const { return name("run", ".js"); }
  [[nodiscard]] std::string path(const std::string& file) const { return folder_ + file; }

  /// Fill the two files that are ours to write, for their owner only. Throw TFileError.
  void writeCommand(std::string_view bytes) const;
  void writeScript(std::string_view bytes) const;

 private:
  [[nodiscard]] std::string name(const char* stem, const char* ending) const;
  void passStale(const char* stem, const char* ending);
  void claim();

  std::string folder_;
  int number_ = 1;
  int lock_ = -1;  ///< the command file, locked while the run lasts
};

}  // namespace hollowmere

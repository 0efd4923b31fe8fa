#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "settings/safefile.h"

namespace hollowmere {

/// The list of project files used last: a text file with one path a line, the newest first. files outlives
/// it.
class TRecentProjects {
 public:
  /// How many the menu shows.
  static constexpr std::size_t menuEntries = 10;

  TRecentProjects(std::string path, TSafeFiles& files) : path_(std::move(path)), files_(files) {}

  /// Puts a project first, drops those whose file is gone and writes the list. Throws TFileError.
  void add(const std::string& projectFile) const;
  /// What the menu shows: at most menuEntries whose files exist. Throws TFileError.
  [[nodiscard]] std::vector<std::string> menu() const;

 private:
  [[nodiscard]] std::vector<std::string> existing() const;

  std::string path_;
  TSafeFiles& files_;
};

}  // namespace hollowmere

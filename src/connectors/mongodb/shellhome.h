#pragma once

#include <map>
#include <string>

namespace hollowmere {

/// An empty home folder for one run of a shell, for its owner only: the user's start files are not run and
/// their history and logs not written. Gone with this object.
class TShellHome {
 public:
  /// Throws std::runtime_error when no folder can be made.
  TShellHome();
  ~TShellHome();
  TShellHome(const TShellHome&) = delete;
  TShellHome& operator=(const TShellHome&) = delete;

  /// What the shell's environment differs in.
  [[nodiscard]] std::map<std::string, std::string> environment() const;

 private:
  std::string path_;
};

}  // namespace hollowmere

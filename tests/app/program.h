#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "support/tempfolder.h"

namespace hollowmere {

/// A program of ours, started with a data folder and settings of its own. Ends with this object at the
/// latest.
class TProgramRun {
 public:
  TProgramRun(const TTempFolder& folder, const std::string& program, std::vector<std::string> arguments,
              const std::string& input = {});
  ~TProgramRun();
  TProgramRun(const TProgramRun&) = delete;
  TProgramRun& operator=(const TProgramRun&) = delete;

  /// Its exit code; -1 when a signal ended it, nothing when it has not ended in time.
  std::optional<int> wait(std::chrono::milliseconds most = std::chrono::seconds(20));
  void signal(int number) const;
  [[nodiscard]] std::string out() const { return readBytes(out_); }
  [[nodiscard]] std::string err() const { return readBytes(err_); }

 private:
  std::string out_;
  std::string err_;
  pid_t process_ = 0;
};

}  // namespace hollowmere

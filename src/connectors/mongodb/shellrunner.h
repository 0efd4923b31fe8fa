#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "connectors/datetimetext.h"
#include "connectors/loadtypes.h"
#include "connectors/mongodb/shellprogram.h"
#include "connectors/mongodb/shellresult.h"
#include "connectors/mongodb/shellscript.h"

namespace hollowmere {

/// What the runs of a shell have in common. The pointed-to and called outlive the runner.
struct TShellSettings {
  std::string program;                   ///< path of the shell, from the settings
  std::string dataFolder;                ///< the program's data folder, with a separator at its end
  std::int64_t timeoutMilliseconds = 0;  ///< 0: none
  std::size_t outputLimit = 64U * 1024 * 1024;
  const TStopFlag* stop = nullptr;            ///< ends the shell and what it started
  std::function<void(std::size_t)> progress;  ///< told the bytes read so far, on the running thread
};

/// Runs commands in MongoDB's shell, the legacy one or today's, which the program itself tells. Each run
/// waits for its end on the calling thread; TShellTask does so on another. One run at a time; several runners
/// may work side by side. Work files are for their owner only, and gone after every run.
class TShellRunner {
 public:
  TShellRunner(TShellSettings settings, const TDateTimeText& dates);

  /// Never throws; what went wrong is in the result.
  TShellResult run(const std::string& recordText, const TShellCommand& command);

  /// The legacy shell as it is: the output without the echo of "use", or the message that tells why there is
  /// none; *error tells which, when it is given.
  std::string RunShell(const std::string& recordText, const TShellCommand& command, bool* error = nullptr);

  /// These two throw TStoreError (Read) with the text for a list that cannot be read.
  std::vector<std::string> collectionNames(const std::string& recordText, const std::string& database);
  std::vector<TObject> indexes(const std::string& recordText, const std::string& database,
                               const std::string& collection);
  /// "Unknown" when it cannot be had.
  std::string serverVersion(const std::string& recordText, const std::string& database);

 private:
  const TShellProgram& program();
  TShellResult runToday(const std::string& recordText, const TShellCommand& command);
  TShellResult runCommand(const std::string& recordText, const std::string& database,
                          const std::string& command);

  TShellSettings settings_;
  const TDateTimeText& dates_;
  std::optional<TShellProgram> program_;
};

}  // namespace hollowmere

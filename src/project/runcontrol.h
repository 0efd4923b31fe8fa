#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "connectors/datetimetext.h"
#include "connectors/storeregistry.h"
#include "engine/ldthread.h"
#include "project/projectmodel.h"
#include "settings/appendfile.h"
#include "settings/clock.h"
#include "settings/mainthread.h"
#include "settings/prompt.h"

namespace hollowmere {

enum class TRunState { Idle, Checking, Initialising, Running, Stopping, Finished };

/// Runs a call that may wait for a server and returns when it is done; a window keeps itself alive
/// meanwhile and sets the flag when its user wants no more. Exceptions come through.
using TBackground = std::function<void(const std::function<void()>& call, TStopFlag& stop)>;

/// What a run needs of the program around it. All references outlive the run control.
struct TRunServices {
  const TStoreRegistry& stores;
  TPrompt& prompt;
  TMainThread& mainThread;
  const TClock& clock;
  const TDateTimeText& dates;
  std::size_t bufferBytes = 1000000;
  TBackground background = [](const auto& call, TStopFlag&) { call(); };
  /// Sees every batch of lines that goes into the log file; may be empty.
  std::function<void(const std::string& lines)> logged;
};

/// A load as it stands, for a progress display.
struct TRunProgress {
  TLoadCounts counts;
  std::int64_t done = 0;     ///< rows, or bytes where the source counts bytes
  std::int64_t maximum = 0;  ///< of done; 0 when it is not known
  int runningThreads = 0;
  int stoppedThreads = 0;
  std::int64_t milliseconds = 0;

  /// Documents processed a second.
  [[nodiscard]] double speed() const {
    return milliseconds > 0
               ? 1000.0 * static_cast<double>(counts.processed()) / static_cast<double>(milliseconds)
               : 0;
  }
};

/// One thread of a load, for the same.
struct TThreadProgress {
  std::string label;
  TLoadCounts counts;
  bool running = false;
  bool failed = false;
  std::int64_t done = 0;     ///< rows, or bytes where the source counts bytes
  std::int64_t maximum = 0;  ///< of done; 0 when it is not known
};

/// The counts of one root mapping.
struct TMappingResult {
  std::string source;
  std::string target;
  TLoadCounts counts;
  bool complete = false;  ///< every thread has read its share of the source to the end
};

/// Starts, supervises and ends the load of one project. Used from the main thread only; the owner calls
/// tick() some times a second while state() is Running or Stopping.
class TRunControl : private TLoadHost {
 public:
  /// In batch mode no question is asked, and a refused start is written to the log.
  TRunControl(TProject project, TRunServices services, bool batch);
  /// Stops the threads and waits for them.
  ~TRunControl() override;

  /// Checks, counts, and starts the threads. False when the load was refused or not wanted; the message
  /// has gone through the prompt.
  bool start();
  /// All checks of a start, and nothing else. False when one fails; the message went through the prompt.
  bool check();
  /// Progress, thresholds, and the end. True as long as there is something to watch.
  bool tick();
  /// The user's stop: asks first.
  void stop();
  /// Without asking. May be called while start() waits in the background, too.
  void stopNow();

  [[nodiscard]] TRunState state() const { return state_; }
  [[nodiscard]] bool busy() const { return state_ != TRunState::Idle && state_ != TRunState::Finished; }
  /// "Working..." or "Ready".
  [[nodiscard]] const std::string& status() const { return status_; }
  [[nodiscard]] TRunProgress progress() const;
  [[nodiscard]] std::vector<TThreadProgress> threads() const;
  [[nodiscard]] const std::vector<TMappingResult>& results() const { return results_; }
  /// What a batch process ends with: 0 after a run to its end, 1 when it could not be run.
  [[nodiscard]] int exitCode() const { return exitCode_; }
  [[nodiscard]] const TProject& project() const { return project_; }

 private:
  void log(const std::string& lines) override;
  void disc(const std::string& lines) override;
  void addTotals(std::size_t mapping, const TLoadCounts& counts, bool complete) override;

  bool makeChecks();
  bool openFiles();
  bool openFile(TAppendFile& file, const std::string& name, const char* text);
  void closeFiles();
  bool refuse(const std::string& message);
  void writeLine(TAppendFile& file, const std::string& line);
  void initialise();
  void countSources();
  void addShares(std::int64_t count, std::int64_t times);
  void makeThreads();
  void startThreads();
  void checkThresholds(const TLoadCounts& counts);
  bool threshold(std::int64_t limit, std::int64_t reached, const char* text);
  void flagThreads();
  void endThreads();
  void finish();
  void writeSummary(const TRunProgress& last);
  void writeResult();
  [[nodiscard]] bool allFailed() const;

  TProject project_;
  TRunServices services_;
  bool batch_;
  TRunState state_ = TRunState::Idle;
  std::string status_;
  TAppendFile log_;
  TAppendFile disc_;
  TStopFlag stopChecks_;
  std::vector<std::unique_ptr<TLdThread>> loads_;
  std::vector<std::jthread> threads_;  // after loads_: joined before these go
  std::vector<TMappingResult> results_;
  std::vector<std::int64_t> completed_;  ///< threads that are done with each
  std::int64_t maximum_ = 0;
  std::vector<std::int64_t> shares_;  ///< of maximum_, by thread
  std::int64_t startTicks_ = 0;
  std::int64_t endTicks_ = 0;
  std::string fileFault_;  ///< why the log or discard file cannot be written any more
  bool stopped_ = false;   ///< the user stopped it
  int exitCode_ = 0;
};

/// Why a project window may not close now; empty when it may.
std::string closeRefusal(const TRunControl* run);
/// Why the program may not end now.
std::string exitRefusal(const std::vector<const TRunControl*>& runs);

}  // namespace hollowmere

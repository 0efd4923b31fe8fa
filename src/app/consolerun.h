#pragma once

#include <iosfwd>
#include <string>
#include <utility>

#include "app/program.h"
#include "project/runcontrol.h"

namespace hollowmere {

/// Says everything on a stream and answers yes: nobody is there to be asked.
class TConsolePrompt : public TPrompt {
 public:
  explicit TConsolePrompt(std::ostream& out, std::string prefix = {})
      : out_(out), prefix_(std::move(prefix)) {}
  TAnswer ask(TPromptKind kind, const std::string& text, TButtons buttons) override;

 private:
  std::ostream& out_;
  std::string prefix_;
};

/// How a load shows itself on a terminal.
struct TConsoleOptions {
  bool progress = false;  ///< one line, written over and over
  bool colour = false;
  int closingPause = 0;  ///< milliseconds between the summary and the end
};

/// The exit code of a run that a signal stopped.
inline constexpr int stoppedBySignal = 130;

/// From now on the first interrupt (Ctrl-C) or termination signal only asks to stop, and a second one ends
/// the process at once.
void watchSignals();
/// Whether a signal to stop has come.
bool interrupted();

/// Waits for servers on a thread of its own, so that a signal is noticed meanwhile.
TBackground consoleBackground(TMainThread& mainThread);

/// Runs a project to its end on the calling thread, or until a signal stops the load. Gives the exit code.
int runOnConsole(TRunControl& control, TMainThread& mainThread, std::ostream& out,
                 const TConsoleOptions& options);

/// The unattended run of a project file: 0 after a run to its end, 1 when it could not be started; the
/// message is on standard error then.
int runBatch(const std::string& projectFile);

}  // namespace hollowmere

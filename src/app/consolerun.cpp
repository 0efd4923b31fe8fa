#include "app/consolerun.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <sstream>
#include <thread>

#include "settings/callqueue.h"

namespace hollowmere {

namespace {

constexpr int tickMilliseconds = 50;
constexpr std::int64_t showEveryMilliseconds = 200;

volatile std::sig_atomic_t signals = 0;

void onSignal(int) {
  signals = signals + 1;
  if (signals > 1) std::_Exit(stoppedBySignal);
}

/// "1,234,567"
std::string grouped(std::int64_t number) {
  std::string digits = std::to_string(number);
  for (std::size_t at = digits.size(); at > 3; at -= 3) digits.insert(at - 3, ",");
  return digits;
}

std::string marked(const std::string& text, bool mark) { return mark ? "\x1b[33m" + text + "\x1b[0m" : text; }

std::string progressLine(const TRunProgress& progress, bool colour) {
  const TLoadCounts& counts = progress.counts;
  std::ostringstream line;
  line << grouped(counts.loaded) << " loaded, "
       << marked(grouped(counts.discarded) + " discarded", colour && counts.discarded > 0) << ", "
       << marked(grouped(counts.skipped) + " skipped", colour && counts.skipped > 0) << ", "
       << grouped(static_cast<std::int64_t>(progress.speed())) << "/s";
  if (progress.maximum > 0)
    line << ", " << std::min<std::int64_t>(100, progress.done * 100 / progress.maximum) << " %";
  line << ", " << progress.milliseconds / 1000 << " s";
  return line.str();
}

/// Writes one line over and over, and leaves the last one standing.
class TProgressLine {
 public:
  TProgressLine(std::ostream& out, const TConsoleOptions& options) : out_(out), options_(options) {}
  ~TProgressLine() {
    if (shown_) out_ << '\n' << std::flush;
  }
  TProgressLine(const TProgressLine&) = delete;
  TProgressLine& operator=(const TProgressLine&) = delete;

  void show(const TRunProgress& progress, bool last) {
    if (!options_.progress || (!last && shown_ && progress.milliseconds < next_)) return;
    next_ = progress.milliseconds + showEveryMilliseconds;
    out_ << '\r' << progressLine(progress, options_.colour) << "\x1b[K" << std::flush;
    shown_ = true;
  }

 private:
  std::ostream& out_;
  const TConsoleOptions& options_;
  std::int64_t next_ = 0;
  bool shown_ = false;
};

}  // namespace

TAnswer TConsolePrompt::ask(TPromptKind /*kind*/, const std::string& text, TButtons buttons) {
  if (buttons != TButtons::Ok) return TAnswer::Yes;
  out_ << prefix_ << text << '\n' << std::flush;
  return TAnswer::Ok;
}

void watchSignals() {
  std::signal(SIGINT, onSignal);
  std::signal(SIGTERM, onSignal);
}

bool interrupted() { return signals > 0; }

TBackground consoleBackground(TMainThread& mainThread) {
  return [&mainThread](const std::function<void()>& call, TStopFlag& stop) {
    std::exception_ptr error;
    std::atomic<bool> done = false;
    std::jthread worker([&] {
      try {
        call();
      } catch (...) {
        error = std::current_exception();
      }
      done = true;
    });
    while (!done) {
      if (interrupted()) stop.set();
      mainThread.pump(1);
    }
    worker.join();
    if (error) std::rethrow_exception(error);
  };
}

int runOnConsole(TRunControl& control, TMainThread& mainThread, std::ostream& out,
                 const TConsoleOptions& options) {
  if (!control.start()) return interrupted() ? stoppedBySignal : control.exitCode();
  {
    TProgressLine line(out, options);
    while (control.tick()) {
      line.show(control.progress(), false);
      mainThread.pump(tickMilliseconds);
      if (interrupted()) control.stopNow();
    }
    line.show(control.progress(), true);
  }
  if (interrupted() && control.exitCode() == 0) return stoppedBySignal;
  std::this_thread::sleep_for(std::chrono::milliseconds(options.closingPause));
  return control.exitCode();
}

int runBatch(const std::string& projectFile) {
  watchSignals();
  TConsolePrompt prompt(std::cerr, "hollowmere: ");
  try {
    TProgram program(prompt);
    TCallQueue mainThread;
    TRunControl control(program.projectFile().open(projectFile),
                        {program.stores,
                         prompt,
                         mainThread,
                         program.clock,
                         program.dates,
                         static_cast<std::size_t>(program.settings.bufLen),
                         consoleBackground(mainThread),
                         {}},
                        true);
    TConsoleOptions options;
    options.closingPause = 1000;
    return runOnConsole(control, mainThread, std::cerr, options);
  } catch (const std::exception& error) {
    prompt.error(error.what());
    return 1;
  }
}

}  // namespace hollowmere

#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "connectors/loadtypes.h"

namespace hollowmere {

/// A program to run, and how long it may take.
struct TChildJob {
  std::string program;                         ///< a path; nothing is searched for
  std::vector<std::string> arguments;          ///< without the program's own name; never with secrets
  std::map<std::string, std::string> changed;  ///< environment variables that differ from ours
  std::int64_t timeoutMilliseconds = 0;        ///< 0: no limit
  std::size_t outputLimit = 64U * 1024 * 1024;
  const TStopFlag* stop = nullptr;
  /// What the program writes to standard output, piece by piece as it comes.
  std::function<void(std::string_view)> output;
  /// Asked every 50 ms while the program runs; false ends it as too large an output does.
  std::function<bool()> goesOn;
};

enum class TChildEnd {
  Exited,      ///< by itself; code holds its exit code
  Signalled,   ///< by a signal from elsewhere; code holds its number
  NotStarted,  ///< code holds the system's error number
  Stopped,
  TimedOut,
  TooMuchOutput,
};

struct TChildResult {
  TChildEnd end = TChildEnd::Exited;
  int code = 0;
  std::string errors;  ///< the beginning of what it wrote to standard error
};

/// Runs a program on the calling thread until it ends. Standard input is empty. The program leads a process
/// group of its own; when it is to end, the whole group is told to, and killed two seconds later. Whatever
/// the program left running in its group when it ended is killed, too. Needs no event loop; safe in every
/// thread.
TChildResult runChild(const TChildJob& job);

}  // namespace hollowmere

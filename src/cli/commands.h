#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace hollowmere {

/// Where a command reads and writes; a test hands in its own streams.
struct TCliStreams {
  std::istream& in;
  std::ostream& out;  ///< data
  std::ostream& err;  ///< messages
  bool errIsTerminal = false;
  bool outIsTerminal = false;
};

/// The program hollowmere-cli: runs one sub-command of the arguments (without the program's own name) and
/// gives its exit code: 0 done, 1 refused or failed, 2 the command line is wrong, 130 stopped by a signal.
int runCli(const std::vector<std::string>& arguments, const TCliStreams& streams);

}  // namespace hollowmere

#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace hollowmere {

/// A command line that is not understood. what() says which word of it.
class TUsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What a sub-command takes.
struct TCommandSyntax {
  std::vector<std::string> positional;  ///< names of the arguments that must be there
  std::vector<std::string> switches;    ///< "--json"
  std::vector<std::string> valued;      ///< "-n", "--set": the next argument is the value
  std::size_t further = 0;              ///< how many more arguments may stand behind
};

/// The arguments behind a sub-command, sorted out.
struct TCommandLine {
  std::vector<std::string> positional;
  std::vector<std::string> switches;
  std::multimap<std::string, std::string> values;

  [[nodiscard]] bool has(const std::string& name) const;
};

/// Throws TUsageError. "--name=value" and "--name value" are the same; after "--" nothing is an option.
TCommandLine parseCommandLine(const std::vector<std::string>& arguments, const TCommandSyntax& syntax);

}  // namespace hollowmere

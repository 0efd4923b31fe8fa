#include "cli/commandline.h"

#include <algorithm>

namespace hollowmere {

namespace {

bool contains(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

bool isOption(const std::string& argument) { return argument.size() > 1 && argument[0] == '-'; }

void checkPositional(const TCommandLine& line, const TCommandSyntax& syntax) {
  const std::size_t wanted = syntax.positional.size();
  if (line.positional.size() < wanted)
    throw TUsageError("the argument " + syntax.positional[line.positional.size()] + " is missing");
  const std::size_t most = wanted + syntax.further;
  if (line.positional.size() > most) throw TUsageError("too many arguments: " + line.positional[most]);
}

}  // namespace

bool TCommandLine::has(const std::string& name) const { return contains(switches, name); }

TCommandLine parseCommandLine(const std::vector<std::string>& arguments, const TCommandSyntax& syntax) {
  TCommandLine line;
  bool options = true;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (!options || !isOption(argument)) {
      line.positional.push_back(argument);
      continue;
    }
    if (argument == "--") {
      options = false;
      continue;
    }
    const std::size_t equals = argument.starts_with("--") ? argument.find('=') : std::string::npos;
    const std::string name = argument.substr(0, equals);
    if (contains(syntax.valued, name)) {
      if (equals == std::string::npos && i + 1 == arguments.size())
        throw TUsageError("a value is missing after " + name);
      line.values.emplace(name, equals == std::string::npos ? arguments[++i] : argument.substr(equals + 1));
    } else if (contains(syntax.switches, argument)) {
      line.switches.push_back(argument);
    } else {
      // What may stand behind the "=" is not repeated.
      throw TUsageError("unknown option " + name);
    }
  }
  checkPositional(line, syntax);
  return line;
}

}  // namespace hollowmere

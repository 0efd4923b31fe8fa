#pragma once

#include <string>

namespace hollowmere {

/// The help text of a sub-command, or of the program for another name.
std::string helpText(const std::string& command);

}  // namespace hollowmere

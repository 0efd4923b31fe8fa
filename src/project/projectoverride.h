#pragma once

#include <string>

#include "project/projectmodel.h"

namespace hollowmere {

/// Changes one general setting by a text "KEY=VALUE": the keys of the project file, booleans "true" and
/// "false". A connection can be changed only where it is a file name: records hold passwords, which do not
/// belong on a command line. Throws TProjectError naming what is wrong.
void overrideSetting(TProject& project, const std::string& assignment);

}  // namespace hollowmere

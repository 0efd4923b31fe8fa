#pragma once

#include <string>

#include "settings/connectionrecord.h"

namespace hollowmere {

/// What the help panel of a type's page shows: the text of its RTF file in the folder Help beside the
/// program, or that there is none. The folder has no separator at its end.
std::string connectionHelp(const TConnectionType& type, const std::string& programFolder);

}  // namespace hollowmere

#pragma once

#include <string>

namespace hollowmere {

/// Runs the program with its windows until they are closed; gives the exit code. projectFile is opened at
/// the start; it may be empty.
int runWindows(int argc, char** argv, const std::string& projectFile);

}  // namespace hollowmere

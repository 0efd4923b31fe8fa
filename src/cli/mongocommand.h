#pragma once

#include "cli/commandline.h"
#include "cli/commands.h"
#include "settings/prompt.h"

namespace hollowmere {

/// The sub-command "mongo": looks at and works on a MongoDB server.
TCommandSyntax mongoSyntax();
/// Gives the exit code; throws TUsageError and what the server's errors are.
int mongoCommand(const TCommandLine& line, const TCliStreams& streams, TPrompt& prompt);

}  // namespace hollowmere

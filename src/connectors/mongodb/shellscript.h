#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "json/value.h"

namespace hollowmere {

/// What a run of a shell asks for.
struct TShellCommand {
  std::string database;
  std::string command;                     ///< one or more statements
  std::string readPreference = "primary";  ///< the shell's own names
  std::int64_t pageSize = 100;
  std::int64_t page = 0;  ///< from 0; a later one runs the command again and passes over those before it
};

/// The legacy shell's input.
std::string legacyScript(const TShellCommand& command);

/// The script for today's shell, begun without a connection: it connects by itself, so that no argument holds
/// the password, and prints each value as a line of extended JSON behind mark + "R". Behind mark + "M" comes
/// nothing: there is a further page; behind mark + "E" an object with the error. Lines without the mark are
/// what the command printed. An error also ends the shell with exit code 1.
std::string todayScript(const TShellCommand& command, const TValue& record, std::string_view mark);

/// The statements of a command as today's shell is to run them in a script: what has a value is handed to
/// __hmShow(), and "use", "show" and "exit", which no script may hold, are put in JavaScript.
std::string scriptStatements(std::string_view command);

/// As a part of a connection string: everything but unreserved characters in hexadecimal.
std::string percentEncoded(std::string_view text);

}  // namespace hollowmere

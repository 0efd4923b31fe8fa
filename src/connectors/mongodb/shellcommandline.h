#pragma once

#include <string>
#include <variant>

#include "json/value.h"

namespace hollowmere {

/// What the legacy shell needs to know of a connection, trimmed.
struct TShellLogin {
  std::string host;
  std::string port;
  std::string user;
  std::string password;
  std::string mechanism;
  std::string authdb;
};

/// Of a connection record text; else the message that says why not.
std::variant<TShellLogin, std::string> shellLogin(const std::string& recordText);

/// The line that runs the legacy shell with its input and output in the subfolder data of base (which ends in
/// a separator). What the platform's shell would take for its own in a value is escaped, so that the program
/// gets the value as it is; ordinary values stand as they are. Throws std::runtime_error, naming the part,
/// for control characters, which no such line can carry.
std::string shellCommandLine(const std::string& program, const TShellLogin& login,
                             const std::string& database, const std::string& base, const std::string& runFile,
                             const std::string& outFile);

}  // namespace hollowmere

#include "connectors/mongodb/shellcommandline.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>

#include "connectors/mongodb/mongoclient.h"
#include "connectors/mongodb/shelltexts.h"
#include "json/json.h"

namespace hollowmere {

namespace {

void refuseControls(std::string_view value, const char* part) {
  const bool bad = std::any_of(value.begin(), value.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7f;
  });
  if (bad)
    throw std::runtime_error(std::string("The ") + part +
                             " holds a control character, which the shell's command file cannot carry.");
}

/// In double quotes.
std::string quoted(std::string_view value, const char* part) {
  refuseControls(value, part);
  std::string out = "\"";
  for (const char c : value) {
    if (c == '"' || c == '\\' || c == '$' || c == '`') out += '\\';
    out += c;
  }
  return out += '"';
}

/// Without quotes.
std::string bare(std::string_view value, const char* part) {
  refuseControls(value, part);
  constexpr std::string_view special = " !\"#$&'()*;<=>?[\\]^`{|}~";
  std::string out;
  for (const char c : value) {
    if (special.find(c) != std::string_view::npos) out += '\\';
    out += c;
  }
  return out;
}

}  // namespace

std::variant<TShellLogin, std::string> shellLogin(const std::string& recordText) {
  TValue record;
  try {
    record = parseJson(recordText);
  } catch (const TJsonError&) {
    return shelltexts::badConnection;
  }
  if (!record.is(TKind::Object)) return shelltexts::badConnection;
  TShellLogin login{textMember(record, "host"),      {},
                    textMember(record, "user"),      textMember(record, "password"),
                    textMember(record, "mechanism"), textMember(record, "authdb")};
  if (login.host.empty()) login.host = "localhost";
  login.port = std::to_string(mongoPort(record));
  if (!login.user.empty() && login.password.empty()) return shelltexts::noPassword + login.user;
  return login;
}

std::string shellCommandLine(const std::string& program, const TShellLogin& login,
                             const std::string& database, const std::string& base, const std::string& runFile,
                             const std::string& outFile) {
  if (login.host.starts_with('-')) throw std::runtime_error("The host is no host name: " + login.host);
  std::string line = quoted(program, "shell's path") + " ";
  line += bare(login.host, "host") + ":" + login.port + "/" + bare(database, "database");
  if (!login.user.empty()) {
    // The password stands without quotes.
    line += " --username " + quoted(login.user, "user") + " --password " + bare(login.password, "password");
    if (!login.mechanism.empty()) {
      line += " --authenticationMechanism " + quoted(login.mechanism, "mechanism");
      if (!login.authdb.empty())
        line += " --authenticationDatabase " + quoted(login.authdb, "authentication database");
    }
  }
  // The separators of the two paths differ.
  line += " --quiet < " + quoted(base + "/data/" + runFile, "data folder");
  return line + "  > " + quoted(base + "data/" + outFile, "data folder");
}

}  // namespace hollowmere

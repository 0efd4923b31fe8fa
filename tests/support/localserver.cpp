#include "support/localserver.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace hollowmere {

namespace {

/// What a command prints; throws when it fails.
std::string outputOf(const std::string& command) {
  FILE* pipe = popen(command.c_str(), "r");
  if (!pipe) throw std::runtime_error("unable to run " + command);
  std::string output;
  for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) output += static_cast<char>(c);
  if (pclose(pipe) != 0) throw std::runtime_error("failed: " + command);
  return output;
}

}  // namespace

TLocalServer::TLocalServer(const std::string& options, const std::string& name)
    : script_(HOLLOWMERE_TESTS_DIR "/servers/" + name) {
  const std::string line =
      outputOf(script_ + " start --port 0 --parent " + std::to_string(getpid()) + " " + options);
  const std::string address = "127.0.0.1:";
  const std::size_t at = line.find(address);
  if (at == std::string::npos) throw std::runtime_error("no address: " + line);
  port_ = static_cast<std::uint16_t>(std::stoi(line.substr(at + address.size())));
}

TLocalServer::~TLocalServer() {
  // Should it fail, the server still ends with this program.
  if (std::system((script_ + " stop " + std::to_string(port_) + " >/dev/null 2>&1").c_str()) != 0) return;
}

}  // namespace hollowmere

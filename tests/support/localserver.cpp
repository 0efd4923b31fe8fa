#include "support/localserver.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace hollowmere {

namespace {

constexpr char scripts[] = HOLLOWMERE_TESTS_DIR "/servers/";

}  // namespace

std::string printedBy(const std::string& command) {
  FILE* pipe = popen(command.c_str(), "r");
  if (!pipe) throw std::runtime_error("unable to run " + command);
  std::string output;
  for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) output += static_cast<char>(c);
  if (pclose(pipe) != 0) throw std::runtime_error("failed: " + command);
  return output;
}

TLocalServer::TLocalServer(const std::string& options, const std::string& name)
    : options_(" --parent " + std::to_string(getpid()) + " " + options), script_(scripts + name) {
  const std::string line = printedBy(script_ + " start --port 0" + options_);
  const std::string address = "127.0.0.1:";
  const std::size_t at = line.find(address);
  if (at == std::string::npos) throw std::runtime_error("no address: " + line);
  port_ = static_cast<std::uint16_t>(std::stoi(line.substr(at + address.size())));
}

TLocalServer::~TLocalServer() {
  // Should it fail, the server still ends with this program.
  if (std::system((script_ + " stop " + std::to_string(port_) + " >/dev/null 2>&1").c_str()) != 0) return;
}

void TLocalServer::crash() const { printedBy(script_ + " crash " + std::to_string(port_)); }

void TLocalServer::resume() const {
  printedBy(script_ + " resume --port " + std::to_string(port_) + options_);
}

}  // namespace hollowmere

#pragma once

#include <cstdint>
#include <string>

namespace hollowmere {

/// What a command prints on standard output. Throws std::runtime_error when it fails.
std::string printedBy(const std::string& command);

/// A real server process of the test's own, through the script in tests/servers; it ends with this
/// object, or with the test program. Throws std::runtime_error when it does not start.
class TLocalServer {
 public:
  /// Options of the script of that name, "--auth" for example.
  explicit TLocalServer(const std::string& options = {}, const std::string& name = "mongodb");
  ~TLocalServer();
  TLocalServer(const TLocalServer&) = delete;
  TLocalServer& operator=(const TLocalServer&) = delete;

  [[nodiscard]] std::uint16_t port() const { return port_; }

  /// Ends the process as a crash would; its data stays. Not every store's script can do this.
  void crash() const;
  /// Starts it again after a crash, on the same port and with what it left. Throws as the constructor does.
  void resume() const;

 private:
  std::string options_;
  std::string script_;
  std::uint16_t port_ = 0;
};

}  // namespace hollowmere

#pragma once

#include <cstdint>
#include <string>

namespace hollowmere {

/// A real server process of the test's own, through the script in tests/servers; it ends with this
/// object, or with the test program. Throws std::runtime_error when it does not start.
class TLocalServer {
 public:
  /// Options of the script, "--auth" for example; name is the script's.
  explicit TLocalServer(const std::string& options = {}, const std::string& name = "mongodb");
  ~TLocalServer();
  TLocalServer(const TLocalServer&) = delete;
  TLocalServer& operator=(const TLocalServer&) = delete;

  [[nodiscard]] std::uint16_t port() const { return port_; }

 private:
  std::string script_;
  std::uint16_t port_ = 0;
};

}  // namespace hollowmere

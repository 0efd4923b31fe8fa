#pragma once

#include <string>

#include "connectors/storeapi.h"
#include "support/localserver.h"

namespace hollowmere {

inline TStoreOptions mongoOptions(std::uint16_t port, const std::string& user = {},
                                  const std::string& authdb = {}) {
  TStoreOptions options;
  options.connection = TObject{{"host", "127.0.0.1"}, {"port", static_cast<int>(port)}, {"database", "test"},
                               {"user", user},        {"password", "secret"},           {"authdb", authdb}};
  return options;
}

/// The server of this test program: one process, users as its script says.
inline const TLocalServer& realServer() {
  static const TLocalServer server("--auth");
  return server;
}

inline TStoreOptions rootOptions() { return mongoOptions(realServer().port(), "root", "admin"); }

}  // namespace hollowmere

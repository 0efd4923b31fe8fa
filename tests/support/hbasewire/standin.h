#pragma once

#include <memory>

#include "support/hbasewire/memorytables.h"
#include "support/thriftwire/wireserver.h"

namespace hollowmere::hbasewire {

/// An HBase of a test's own on loopback; its tables can outlive a server, so that one can come back.
class THBaseStandIn {
 public:
  explicit THBaseStandIn(const thriftwire::TOptions& options = {},
                         std::shared_ptr<TMemoryTables> tables = std::make_shared<TMemoryTables>());

  [[nodiscard]] std::uint16_t port() const { return server_.port(); }
  TMemoryTables& tables() { return *tables_; }
  [[nodiscard]] std::shared_ptr<TMemoryTables> sharedTables() const { return tables_; }
  thriftwire::TWireServer& server() { return server_; }

  /// A table with one family, "cf".
  void makeTable(const std::string& name);

 private:
  std::shared_ptr<TMemoryTables> tables_;
  thriftwire::TWireServer server_;
};

}  // namespace hollowmere::hbasewire

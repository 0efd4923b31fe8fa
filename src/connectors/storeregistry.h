#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "connectors/storeapi.h"

namespace hollowmere {

/// The stores that this program has. Filled once at start, then read from any thread.
class TStoreRegistry {
 public:
  void add(std::unique_ptr<TStoreConnector> connector) { connectors_.push_back(std::move(connector)); }

  /// nullptr for a type that is not there. Names are compared exactly.
  [[nodiscard]] const TStoreConnector* find(std::string_view dbType) const {
    for (const auto& connector : connectors_)
      if (connector->dbType() == dbType) return connector.get();
    return nullptr;
  }

  [[nodiscard]] const std::vector<std::unique_ptr<TStoreConnector>>& all() const { return connectors_; }

 private:
  std::vector<std::unique_ptr<TStoreConnector>> connectors_;
};

}  // namespace hollowmere

#pragma once

#include <memory>

#include "connectors/storeapi.h"

namespace hollowmere {

/// The store "HBase", through its first Thrift service.
std::unique_ptr<TStoreConnector> makeHBaseConnector();

}  // namespace hollowmere

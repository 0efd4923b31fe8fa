#pragma once

#include <memory>

#include "connectors/storeapi.h"

namespace hollowmere {

/// The store "Cassandra", through the Thrift interface of its versions 2.1 to 3.11.
std::unique_ptr<TStoreConnector> makeCassandraConnector();

}  // namespace hollowmere

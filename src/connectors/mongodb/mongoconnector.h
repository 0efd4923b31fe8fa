#pragma once

#include <memory>

#include "connectors/storeapi.h"

namespace hollowmere {

/// The store "MongoDB", through the server's own C driver.
std::unique_ptr<TStoreConnector> makeMongoConnector();

}  // namespace hollowmere

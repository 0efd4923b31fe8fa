#pragma once

#include "connectors/storeregistry.h"

namespace hollowmere {

/// Every store that this program has, in the order shown to users.
void addStores(TStoreRegistry& stores);

}  // namespace hollowmere

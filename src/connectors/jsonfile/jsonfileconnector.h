#pragma once

#include <memory>
#include <string>

#include "connectors/storeapi.h"

namespace hollowmere {

/// The store "JSON File": a text file of one JSON object a line, as a source and as a target.
std::unique_ptr<TStoreConnector> makeJsonFileConnector();

/// The file name of a connection value: its text without double quotes. Throws TStoreError (Connect) when
/// the value is no text.
std::string jsonFileName(const TValue& connection);

}  // namespace hollowmere

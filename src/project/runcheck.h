#pragma once

#include <functional>
#include <string>
#include <vector>

#include "connectors/storeregistry.h"
#include "project/maptree.h"
#include "project/projectmodel.h"

namespace hollowmere {

/// The store options of a project's two sides.
TStoreOptions sourceOptions(const TProject& project, std::size_t bufferBytes);
TStoreOptions targetOptions(const TProject& project, std::size_t bufferBytes);

/// Everything that is checked before a load starts, in the order in which users see it: types,
/// connections (both are opened once; nothing is changed), lists, mapping. Gives the message of the first
/// failure, empty when the load may start. background runs a call that may wait for a server.
std::string checkProject(const TProject& project, const TStoreRegistry& stores, std::size_t bufferBytes,
                         const TStopFlag* stop,
                         const std::function<void(const std::function<void()>&)>& background);

/// What is wrong at a node of the mapping tree.
struct TMappingFault {
  TNodePath path;
  std::string message;
};

/// The part of it that needs no connection, the mapping against the lists: all faults, the one that a start
/// names first. A side without a connector is not asked.
std::vector<TMappingFault> mappingFaults(const TProject& project, const TStoreConnector* source,
                                         const TStoreConnector* target);
/// The message of the first, or empty.
std::string checkMapping(const TProject& project, const TStoreConnector& source,
                         const TStoreConnector& target);

}  // namespace hollowmere

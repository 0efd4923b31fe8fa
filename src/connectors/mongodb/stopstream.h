#pragma once

#include <mongoc/mongoc.h>

#include "connectors/loadtypes.h"

namespace hollowmere {

/// Makes a client's connections end soon after a stop flag is set: the driver itself waits for a server
/// for minutes and cannot be called off. Waiting goes on for a grace time after the stop, so that the last
/// batch of a healthy server is still confirmed. To be called before the client's first operation; stop
/// may be null, else it outlives the client.
void useStopStreams(mongoc_client_t* client, const TStopFlag* stop);

}  // namespace hollowmere

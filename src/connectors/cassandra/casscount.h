#pragma once

#include <cstdint>

#include "connectors/cassandra/casssource.h"

namespace hollowmere {

/// The rows that a data source's query gives. A whole table is counted piece by piece of its tokens, so that
/// no call takes long; what count(*) does not count (DISTINCT, groups, aggregates) is read. Ends soon after
/// the stop is set. Throws TStoreError (DataSource, Connect).
std::int64_t countRows(TCassandraClient& client, TCassSource source, const TStopFlag* stop);

}  // namespace hollowmere

#include "app/stores.h"

#include "connectors/cassandra/cassandraconnector.h"
#include "connectors/hbase/hbaseconnector.h"
#include "connectors/jsonfile/jsonfileconnector.h"
#include "connectors/mongodb/mongoconnector.h"

namespace hollowmere {

void addStores(TStoreRegistry& stores) {
  stores.add(makeMongoConnector());
  stores.add(makeCassandraConnector());
  stores.add(makeHBaseConnector());
  stores.add(makeJsonFileConnector());
}

}  // namespace hollowmere

#pragma once

#include <optional>
#include <string>

#include "connectors/cassandra/cassandraclient.h"
#include "connectors/cassandra/rootplan.h"

namespace hollowmere {

/// A query object of Cassandra: members keyspace and query (CQL). Its member columnfamily is for whoever
/// reads the project: the table is the one that the query names.
struct TCassSource {
  /// Throws TStoreError of that kind when the keyspace or the query is missing, or the query cannot be one.
  explicit TCassSource(const TDataSource& source, TStoreErrorKind kind = TStoreErrorKind::DataSource);

  /// Makes the keyspace the client's: by its name as it stands, else without quotes and in lower case, which
  /// then is its name. Throws TCassandraError.
  void useKeyspace(TCassandraClient& client);
  /// Has the server look at the statement as it stands, then plans it. Nothing, and the reason in why, when
  /// it can only be read at once. useKeyspace() came before. Throws TCassandraError.
  std::optional<TRootPlan> plan(TCassandraClient& client, std::string& why) const;

  std::string keyspace;
  std::string query;
};

}  // namespace hollowmere

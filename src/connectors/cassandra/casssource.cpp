#include "connectors/cassandra/casssource.h"

namespace hollowmere {

TCassSource::TCassSource(const TDataSource& source, TStoreErrorKind kind)
    : keyspace(trimmedMember(source.definition, "keyspace")),
      query(trimmedMember(source.definition, "query")) {
  if (keyspace.empty() || query.empty())
    throw TStoreError(kind, "Data source " + source.name + " names no Cassandra keyspace and query.");
  if (const std::string fault = selectFault(query); !fault.empty())
    throw TStoreError(kind, "Data source " + source.name + ": " + fault);
  // A server takes no comment that ends with the statement.
  query = withoutComments(query);
}

void TCassSource::useKeyspace(TCassandraClient& client) {
  try {
    return client.setKeyspace(keyspace);
  } catch (const TCassandraError& error) {
    const bool quoted = keyspace.size() > 2 && keyspace.starts_with('"') && keyspace.ends_with('"');
    const TCqlToken token{quoted ? TCqlToken::TKind::Name : TCqlToken::TKind::Word, keyspace, 0};
    std::string name = token.name();
    if (error.connectionLost() || name == keyspace) throw;
    try {
      client.setKeyspace(name);
    } catch (const TCassandraError& again) {
      if (again.connectionLost()) throw;
      throw error;
    }
    keyspace = std::move(name);
  }
}

std::optional<TRootPlan> TCassSource::plan(TCassandraClient& client, std::string& why) const {
  // What the server has against it is said of the statement itself, not of what becomes of it.
  client.prepare(query);
  const TCqlSelect select(query);
  TCqlTable table = select.table();
  if (table.keyspace.empty()) table.keyspace = keyspace;
  return planRoot(select, TCassSchema(client).columns(table.keyspace, table.name), client.majorVersion() < 3,
                  why);
}

}  // namespace hollowmere

#pragma once

#include <string>
#include <vector>

#include "connectors/cassandra/cassandraclient.h"

namespace hollowmere {

enum class TKeyRole { Partition, Clustering, Static, Regular };

struct TCassColumn {
  std::string name;
  std::string type;  ///< CQL text
  TKeyRole role = TKeyRole::Regular;
  int position = 0;         ///< within the partition key or the clustering columns
  bool descending = false;  ///< order of a clustering column

  [[nodiscard]] bool isKey() const { return role == TKeyRole::Partition || role == TKeyRole::Clustering; }
};

struct TCassIndex {
  std::string name;
  std::string kind;
  std::string target;  ///< what is indexed
};

/// Reads a server's schema tables, those before version 3 (system.schema_...) or those since
/// (system_schema). Names are exact. Calls throw TCassandraError. The client outlives it.
class TCassSchema {
 public:
  explicit TCassSchema(TCassandraClient& client) : client_(client), modern_(client.majorVersion() >= 3) {}

  std::vector<std::string> keyspaces();
  std::vector<std::string> tables(const std::string& keyspace);
  /// As "select *" gives them: partition key, clustering columns, then the others by name. Empty when there
  /// is no such table.
  std::vector<TCassColumn> columns(const std::string& keyspace, const std::string& table);
  std::vector<TCassIndex> indexes(const std::string& keyspace, const std::string& table);

  /// CQL type of one column; "text" when the schema tells none.
  std::string columnType(const std::string& keyspace, const std::string& table, const std::string& column);
  TKeyRole columnKind(const std::string& keyspace, const std::string& table, const std::string& column);

 private:
  std::string where(const std::string& keyspace, const std::string& table) const;
  std::vector<std::string> names(const std::string& cql, const char* column);
  void hideCompact(const std::string& keyspace, const std::string& table, std::vector<TCassColumn>& columns);

  TCassandraClient& client_;
  bool modern_;
};

/// CQL text of a validator class text; types that the short table of names lacks by their own names.
std::string validatorText(const std::string& validator);

}  // namespace hollowmere

#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "connectors/cassandra/cassandraclient.h"
#include "connectors/cassandra/cassschema.h"
#include "connectors/cassandra/casstype.h"

namespace hollowmere {

/// "insert into ks.t ( a,b,c ) values ( ?,?,? )"
std::string buildInsert(const std::string& keyspace, const std::string& table,
                        const std::vector<std::string>& columns);
/// "update ks.t set c=c+? where k=?": tables of counters take no other statement.
std::string buildCounterUpdate(const std::string& keyspace, const std::string& table,
                               const std::vector<TCassColumn>& columns);

/// How rows with one set of non-null members are written.
struct TInsertPlan {
  std::vector<std::string> members;  ///< names as the documents have them
  std::vector<std::string> columns;  ///< their columns
  std::vector<std::size_t> order;    ///< of the members, as the markers stand
  std::vector<std::size_t> keys;     ///< markers of key columns
  std::string cql;
  std::vector<TCassType> types;  ///< of the markers
  std::int32_t id = 0;           ///< of the prepared statement
  std::int32_t batchId = 0;      ///< of batchRows of them together
  std::size_t batchRows = 1;
  std::string fault;  ///< why such rows cannot be written; empty when they can
};

/// The plans of one table.
class TInsertPlans {
 public:
  /// Rows written together, when more than one. The client outlives it.
  TInsertPlans(TCassandraClient& client, std::string keyspace, std::string table,
               std::vector<TCassColumn> columns, std::size_t batchRows);

  /// The plan for a document's members that are not null; nullptr when there is none yet. Stays where it is.
  TInsertPlan* find(const TObject& document);
  /// Makes it. Throws TCassandraError only when the connection is lost: a statement that is refused is the
  /// plan's fault.
  TInsertPlan& add(const TObject& document);
  /// Once more, after the server has lost it.
  void prepare(TInsertPlan& plan);

  [[nodiscard]] bool countersOnly() const { return counters_; }

 private:
  void resolve(TInsertPlan& plan) const;
  void write(TInsertPlan& plan) const;

  TCassandraClient& client_;
  std::string keyspace_;
  std::string table_;
  std::vector<TCassColumn> columns_;
  std::size_t batchRows_;
  bool counters_;
  std::vector<std::unique_ptr<TInsertPlan>> plans_;
  TInsertPlan* last_ = nullptr;
};

}  // namespace hollowmere

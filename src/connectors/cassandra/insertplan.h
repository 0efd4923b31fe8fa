#pragma once

#include <list>
#include <map>
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
  /// Markers of the columns that tell which rows overwrite each other; none where the order of rows does not
  /// matter, as with counters.
  std::vector<std::size_t> keys;
  std::string cql;
  std::vector<TCassType> types;                  ///< of the markers
  std::int32_t id = 0;                           ///< of the prepared statement
  bool takesBatches = true;                      ///< several rows may be one statement
  std::map<std::size_t, std::int32_t> batchIds;  ///< of prepared batches, by their rows
  std::string fault;                             ///< why such rows cannot be written; empty when they can
};

/// The plans of one table, those that were used last.
class TInsertPlans {
 public:
  using TPlan = std::shared_ptr<TInsertPlan>;

  /// The client outlives it.
  TInsertPlans(TCassandraClient& client, std::string keyspace, std::string table,
               std::vector<TCassColumn> columns);

  /// The kept plan for a document's members that are not null; nullptr when there is none.
  TPlan find(const TObject& document);
  /// Makes it, without the server: it may have a fault, else it is to be prepared.
  [[nodiscard]] TPlan make(const TObject& document) const;
  /// Keeps it for find(); the one that was not used for longest goes.
  void keep(TPlan plan);
  /// Also once more, after the server has lost it. Throws TCassandraError only when the connection is lost: a
  /// statement that is refused is the plan's fault.
  void prepare(TInsertPlan& plan);
  /// So many rows as one statement; takesBatches tells whether the server has it. Throws as prepare().
  void prepareBatch(TInsertPlan& plan, std::size_t rows);

  [[nodiscard]] bool countersOnly() const { return counters_; }

 private:
  using TMembers = std::vector<std::string>;

  void resolve(TInsertPlan& plan) const;
  void write(TInsertPlan& plan) const;
  [[nodiscard]] bool tellsRows(const TCassColumn& column) const;

  TCassandraClient& client_;
  std::string keyspace_;
  std::string table_;
  std::vector<TCassColumn> columns_;
  bool counters_;
  bool statics_;
  std::list<TPlan> byUse_;  ///< the last used one first
  std::map<TMembers, std::list<TPlan>::iterator> byMembers_;
};

}  // namespace hollowmere

#include "connectors/cassandra/insertplan.h"

#include <algorithm>

#include "connectors/cassandra/cqltext.h"

namespace hollowmere {

namespace {

/// Sets of members whose statements are kept, here and on the server.
constexpr std::size_t mostPlans = 256;

std::string joined(const std::vector<std::string>& pieces, std::string_view between) {
  std::string out;
  for (const std::string& piece : pieces) (out += out.empty() ? "" : between) += piece;
  return out;
}

std::vector<std::string> membersOf(const TObject& document) {
  std::vector<std::string> members;
  for (const TMember& member : document)
    if (!member.value.isNull()) members.push_back(member.name);
  return members;
}

/// Whether the document's members that are not null are just these, in this order.
bool matches(const TObject& document, const std::vector<std::string>& members) {
  std::size_t at = 0;
  for (const TMember& member : document) {
    if (member.value.isNull()) continue;
    if (at == members.size() || member.name != members[at]) return false;
    ++at;
  }
  return at == members.size();
}

}  // namespace

std::string buildInsert(const std::string& keyspace, const std::string& table,
                        const std::vector<std::string>& columns) {
  std::vector<std::string> names;
  for (const std::string& column : columns) names.push_back(cqlName(column));
  return "insert into " + cqlName(keyspace) + "." + cqlName(table) + " ( " + joined(names, ",") +
         " ) values ( " + joined(std::vector<std::string>(columns.size(), "?"), ",") + " )";
}

std::string buildCounterUpdate(const std::string& keyspace, const std::string& table,
                               const std::vector<TCassColumn>& columns) {
  std::vector<std::string> changes, keys;
  for (const TCassColumn& column : columns) {
    const std::string name = cqlName(column.name);
    if (column.isKey())
      keys.push_back(name + "=?");
    else
      changes.push_back(name + "=" + name + "+?");
  }
  return "update " + cqlName(keyspace) + "." + cqlName(table) + " set " + joined(changes, ",") + " where " +
         joined(keys, " and ");
}

TInsertPlans::TInsertPlans(TCassandraClient& client, std::string keyspace, std::string table,
                           std::vector<TCassColumn> columns)
    : client_(client),
      keyspace_(std::move(keyspace)),
      table_(std::move(table)),
      columns_(std::move(columns)),
      counters_(std::any_of(columns_.begin(), columns_.end(),
                            [](const TCassColumn& c) { return c.type == "counter"; })),
      statics_(std::any_of(columns_.begin(), columns_.end(),
                           [](const TCassColumn& c) { return c.role == TKeyRole::Static; })) {}

TInsertPlans::TPlan TInsertPlans::find(const TObject& document) {
  if (!byUse_.empty() && matches(document, byUse_.front()->members)) return byUse_.front();
  const auto found = byMembers_.find(membersOf(document));
  if (found == byMembers_.end()) return nullptr;
  byUse_.splice(byUse_.begin(), byUse_, found->second);
  return byUse_.front();
}

TInsertPlans::TPlan TInsertPlans::make(const TObject& document) const {
  auto plan = std::make_shared<TInsertPlan>();
  plan->members = membersOf(document);
  resolve(*plan);
  return plan;
}

void TInsertPlans::keep(TPlan plan) {
  if (byUse_.size() == mostPlans) {
    byMembers_.erase(byUse_.back()->members);
    byUse_.pop_back();
  }
  byUse_.push_front(std::move(plan));
  byMembers_[byUse_.front()->members] = byUse_.begin();
}

/// Columns by their exact names, else by the only one that differs in letter case.
void TInsertPlans::resolve(TInsertPlan& plan) const {
  for (const std::string& member : plan.members) {
    auto found = std::find_if(columns_.begin(), columns_.end(),
                              [&](const TCassColumn& c) { return c.name == member; });
    if (found == columns_.end())
      found = std::find_if(columns_.begin(), columns_.end(),
                           [&](const TCassColumn& c) { return equalIgnoringCase(c.name, member); });
    if (found == columns_.end()) {
      plan.fault = "Table " + keyspace_ + "." + table_ + " has no column " + member + ".";
      return;
    }
    if (std::find(plan.columns.begin(), plan.columns.end(), found->name) != plan.columns.end()) {
      plan.fault = "Two fields of the document are column " + found->name + ".";
      return;
    }
    plan.columns.push_back(found->name);
  }
  if (plan.members.empty()) plan.fault = "The document has no value for any column.";
  write(plan);
}

/// The statement, and which member each marker takes.
void TInsertPlans::write(TInsertPlan& plan) const {
  std::vector<TCassColumn> used;
  for (const std::string& name : plan.columns)
    used.push_back(*std::find_if(columns_.begin(), columns_.end(),
                                 [&](const TCassColumn& c) { return c.name == name; }));
  for (std::size_t i = 0; i < plan.columns.size(); ++i) plan.order.push_back(i);
  if (counters_)
    std::stable_partition(plan.order.begin(), plan.order.end(),
                          [&](std::size_t i) { return !used[i].isKey(); });
  // In the order of the columns, whatever that of the document's members.
  for (const TCassColumn& column : columns_)
    for (std::size_t marker = 0; marker < plan.order.size() && tellsRows(column); ++marker)
      if (used[plan.order[marker]].name == column.name) plan.keys.push_back(marker);
  plan.takesBatches = !counters_;
  plan.cql =
      counters_ ? buildCounterUpdate(keyspace_, table_, used) : buildInsert(keyspace_, table_, plan.columns);
}

/// Static columns belong to all rows of a partition.
bool TInsertPlans::tellsRows(const TCassColumn& column) const {
  return !counters_ && (statics_ ? column.role == TKeyRole::Partition : column.isKey());
}

void TInsertPlans::prepare(TInsertPlan& plan) {
  plan.batchIds.clear();
  try {
    const TCassPrepared one = client_.prepare(plan.cql);
    plan.id = one.id;
    plan.types.clear();
    for (const std::string& type : one.types) plan.types.push_back(TCassType::fromClass(type));
    if (plan.types.size() != plan.order.size()) plan.fault = "The server counts other markers in " + plan.cql;
  } catch (const TCassandraError& error) {
    if (error.connectionLost()) throw;
    plan.fault = error.what();
  }
}

void TInsertPlans::prepareBatch(TInsertPlan& plan, std::size_t rows) {
  std::string batch = "begin unlogged batch ";
  for (std::size_t i = 0; i < rows; ++i) batch += plan.cql + "; ";
  try {
    plan.batchIds[rows] = client_.prepare(batch + "apply batch").id;
  } catch (const TCassandraError& error) {
    if (error.connectionLost()) throw;
    plan.takesBatches = false;
  }
}

}  // namespace hollowmere

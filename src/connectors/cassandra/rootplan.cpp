#include "connectors/cassandra/rootplan.h"

#include <algorithm>

namespace hollowmere {

namespace {

using TAt = TCqlSelect::TAt;

class TPlanner {
 public:
  TPlanner(const TCqlSelect& select, const std::vector<TCassColumn>& columns, std::string& why)
      : select_(select), columns_(columns), why_(why) {}

  std::optional<TRootPlan> plan(bool oldServer) {
    TRootPlan plan;
    for (const TCassColumn& column : columns_) {
      if (column.role == TKeyRole::Partition) plan.partition.push_back(column);
      if (column.role == TKeyRole::Clustering) plan.clustering.push_back(column);
      if (oldServer && column.isKey() && column.type.find('<') != std::string::npos) {
        why_ = "a key column is a collection";
        return std::nullopt;
      }
    }
    if (plan.partition.empty()) {
      why_ = "the key of its table is not known";
      return std::nullopt;
    }
    if (!readTail(plan) || !readColumns(plan) || !readConditions(plan)) return std::nullopt;
    return plan;
  }

 private:
  bool fail(const std::string& why) {
    why_ = why;
    return false;
  }

  /// ALLOW FILTERING and a LIMIT will do; ORDER BY and what puts rows together will not.
  bool readTail(TRootPlan& plan) {
    for (TAt at = select_.tail; at < select_.end; at += 2) {
      const bool two = at + 1 < select_.end;
      if (two && at->isWord("allow") && (at + 1)->isWord("filtering")) {
        plan.filtering = true;
      } else if (two && at->isWord("limit") && (plan.limit = select_.limit())) {
        continue;
      } else {
        return fail("it has clauses of its own for order, groups or limits");
      }
    }
    return true;
  }

  bool readColumns(TRootPlan& plan) {
    if (select_.distinct || select_.json) return fail("it selects DISTINCT or JSON");
    if (const std::string joiner = select_.joiner(); !joiner.empty())
      return fail("it calls the function " + joiner + ", which may put rows together");
    plan.table = select_.between(select_.from, select_.where);
    std::string list = select_.between(select_.columns, select_.from);
    if (list != "*")
      for (const auto* keys : {&plan.partition, &plan.clustering})
        for (const TCassColumn& key : *keys) {
          if (isAskedFor(key.name)) continue;
          list += ", " + cqlName(key.name);
          ++plan.appended;
        }
    plan.select = "select " + list + " " + plan.table;
    return true;
  }

  /// Whether the column itself is among the columns, and nothing else by its name.
  [[nodiscard]] bool isAskedFor(const std::string& key) const {
    bool found = false;
    for (TAt at = select_.columns; at != select_.from; ++at) {
      if (at->kind == TCqlToken::TKind::Symbol || at->name() != key) continue;
      const bool begins = at == select_.columns || (at - 1)->isSymbol(',');
      const bool ends = at + 1 == select_.from || (at + 1)->isSymbol(',');
      if (ends && !begins) return false;
      found = found || (begins && ends);
    }
    return found;
  }

  bool readConditions(TRootPlan& plan) {
    if (select_.where == select_.tail) return true;
    plan.conditions = select_.between(select_.where + 1, select_.tail);
    const auto equalTo = [&](const TCassColumn& key) { return mentions(key) == 1 && isEqual(key); };
    const bool clusteringNamed = std::any_of(plan.clustering.begin(), plan.clustering.end(),
                                             [&](const TCassColumn& key) { return mentions(key) > 0; });
    const bool partitionNamed = std::any_of(plan.partition.begin(), plan.partition.end(),
                                            [&](const TCassColumn& key) { return mentions(key) > 0; });
    const bool tokenNamed = std::any_of(select_.where, select_.tail,
                                        [](const TCqlToken& token) { return token.isWord("token"); });
    if (clusteringNamed || tokenNamed) return fail("its conditions name clustering columns or tokens");
    plan.onePartition = std::all_of(plan.partition.begin(), plan.partition.end(), equalTo);
    if (partitionNamed && !plan.onePartition) return fail("its conditions name some of the partition key");
    return true;
  }

  [[nodiscard]] static bool names(const TCqlToken& token, const TCassColumn& column) {
    const bool name = token.kind == TCqlToken::TKind::Word || token.kind == TCqlToken::TKind::Name;
    return name && token.name() == column.name;
  }
  [[nodiscard]] std::int64_t mentions(const TCassColumn& column) const {
    return std::count_if(select_.where, select_.tail, [&](const TCqlToken& t) { return names(t, column); });
  }
  [[nodiscard]] bool isEqual(const TCassColumn& column) const {
    const TAt at =
        std::find_if(select_.where, select_.tail, [&](const TCqlToken& t) { return names(t, column); });
    return at + 1 < select_.tail && (at + 1)->isSymbol('=');
  }

  const TCqlSelect& select_;
  const std::vector<TCassColumn>& columns_;
  std::string& why_;
};

}  // namespace

std::optional<TRootPlan> planRoot(const TCqlSelect& select, const std::vector<TCassColumn>& columns,
                                  bool oldServer, std::string& why) {
  return TPlanner(select, columns, why).plan(oldServer);
}

/// "token(a, b)", or with markers "token(?, ?)".
std::string TRootPlan::tokenCall(bool markers) const {
  std::string call = "token(";
  for (std::size_t i = 0; i < partition.size(); ++i) {
    call += i > 0 ? ", " : "";
    call += markers ? "?" : cqlName(partition[i].name);
  }
  return call + ")";
}

std::string TRootPlan::finish(const std::string& begin, std::vector<std::string> more,
                              std::int64_t rows) const {
  if (!conditions.empty()) more.insert(more.begin(), conditions);
  std::string cql = begin;
  for (std::size_t i = 0; i < more.size(); ++i) cql += (i == 0 ? " where " : " and ") + more[i];
  if (rows > 0) cql += " limit " + std::to_string(rows);
  // A condition on the table's other columns goes together with one on its key only so.
  return filtering || !conditions.empty() ? cql + " allow filtering" : cql;
}

std::vector<std::string> TRootPlan::tokenBounds(bool lower, bool upper) const {
  std::vector<std::string> bounds;
  if (lower) bounds.push_back(tokenCall(false) + " > ?");
  if (upper) bounds.push_back(tokenCall(false) + " <= ?");
  return bounds;
}

std::string TRootPlan::firstCql(bool lower, bool upper, std::int64_t rows) const {
  return finish(select, tokenBounds(lower, upper), rows);
}

void TRootPlan::selectKeys() {
  select.clear();
  for (const auto* keys : {&partition, &clustering})
    for (const TCassColumn& key : *keys) select += (select.empty() ? "select " : ", ") + cqlName(key.name);
  select += " " + table;
  appended = 0;
}

std::string TRootPlan::countCql(bool lower, bool upper) const {
  return finish("select count(*) " + table, tokenBounds(lower, upper), 0);
}

std::string TRootPlan::withinCql(std::size_t depth, std::int64_t rows) const {
  std::vector<std::string> more;
  if (!onePartition)
    for (const TCassColumn& key : partition) more.push_back(cqlName(key.name) + " = ?");
  for (std::size_t i = 0; i < depth; ++i) {
    const char* compare = i + 1 < depth ? " = ?" : clustering[i].descending ? " < ?" : " > ?";
    more.push_back(cqlName(clustering[i].name) + compare);
  }
  return finish(select, std::move(more), rows);
}

std::string TRootPlan::behindCql(bool upper, std::int64_t rows) const {
  std::vector<std::string> more{tokenCall(false) + " > " + tokenCall(true)};
  if (upper) more.push_back(tokenCall(false) + " <= ?");
  return finish(select, std::move(more), rows);
}

}  // namespace hollowmere

#include "connectors/cassandra/rootplan.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "connectors/cassandra/cqltext.h"
#include "connectors/textpiece.h"

namespace hollowmere {

namespace {

using TTokens = std::vector<TCqlToken>;
using TAt = TTokens::const_iterator;

/// Functions of one row; others put rows together.
constexpr std::array<std::string_view, 14> rowFunctions{
    "writetime",       "ttl",    "token", "dateof",     "unixtimestampof", "todate",       "totimestamp",
    "tounixtimestamp", "tojson", "cast",  "blobastext", "textasblob",      "blobasbigint", "blobasint"};

/// The clauses of a select statement.
struct TClauses {
  TAt columns, from, where, tail, end;  ///< where is tail when there is none
};

class TPlanner {
 public:
  TPlanner(std::string_view cql, const std::vector<TCassColumn>& columns, std::string& why)
      : cql_(cql), tokens_(cqlTokens(cql)), columns_(columns), why_(why) {}

  std::optional<TRootPlan> plan(bool oldServer) {
    TRootPlan plan;
    for (const TCassColumn& column : columns_) {
      if (column.role == TKeyRole::Partition) plan.partition.push_back(column);
      if (column.role == TKeyRole::Clustering) plan.clustering.push_back(column);
      if (oldServer && column.isKey() && column.type.find('<') != std::string::npos)
        return refuse("a key column is a collection");
    }
    if (plan.partition.empty()) return refuse("the key of its table is not known");
    if (!split() || !readTail(plan) || !readColumns(plan) || !readConditions(plan)) return std::nullopt;
    return plan;
  }

 private:
  std::nullopt_t refuse(const char* why) {
    why_ = why;
    return std::nullopt;
  }
  bool fail(const char* why) {
    why_ = why;
    return false;
  }

  [[nodiscard]] std::string between(TAt from, TAt to) const {
    const std::size_t begin = from == tokens_.end() ? cql_.size() : from->begin;
    const std::size_t end = to == tokens_.end() ? cql_.size() : to->begin;
    return std::string(trimmed(cql_.substr(begin, end - begin)));
  }

  TAt find(TAt from, TAt to, std::initializer_list<std::string_view> words) const {
    return std::find_if(from, to, [&](const TCqlToken& token) {
      return std::any_of(words.begin(), words.end(),
                         [&](std::string_view word) { return token.isWord(word); });
    });
  }

  bool split() {
    while (!tokens_.empty() && tokens_.back().isSymbol(';')) {
      cql_ = cql_.substr(0, tokens_.back().begin);
      tokens_.pop_back();
    }
    if (tokens_.empty() || !tokens_[0].isWord("select")) return fail("it is no select statement");
    // A comment would swallow what is appended.
    for (const std::string_view comment : {"--", "//", "/*"})
      if (cql_.find(comment) != std::string_view::npos) return fail("it holds a comment");
    clauses_.columns = tokens_.begin() + 1;
    clauses_.end = tokens_.end();
    clauses_.from = find(clauses_.columns, clauses_.end, {"from"});
    if (clauses_.from == clauses_.end) return fail("it is no select statement");
    clauses_.tail = find(clauses_.from, clauses_.end, {"order", "limit", "group", "per", "allow"});
    clauses_.where = find(clauses_.from, clauses_.tail, {"where"});
    return true;
  }

  /// ALLOW FILTERING and a LIMIT will do; ORDER BY and what puts rows together will not.
  bool readTail(TRootPlan& plan) {
    for (TAt at = clauses_.tail; at != clauses_.end;) {
      const auto left = clauses_.end - at;
      if (at->isWord("allow") && left > 1 && (at + 1)->isWord("filtering")) {
        plan.filtering = true;
        at += 2;
      } else if (at->isWord("limit") && left > 1 && (at + 1)->kind == TCqlToken::TKind::Number) {
        const std::string_view digits = (at + 1)->text;
        std::int64_t limit = 0;
        if (std::from_chars(digits.data(), digits.data() + digits.size(), limit).ec != std::errc())
          return fail("its limit");
        plan.limit = limit;
        at += 2;
      } else {
        return fail("it has clauses of its own for order, groups or limits");
      }
    }
    return true;
  }

  bool readColumns(TRootPlan& plan) {
    std::vector<std::string> plain;
    std::string list = between(clauses_.columns, clauses_.from);
    if (clauses_.columns->isWord("distinct") ||
        (clauses_.columns->isWord("json") && !isSymbolAt(clauses_.columns + 1, ',')))
      return fail("it selects DISTINCT or JSON");
    if (list == "*") {
      plan.select = "select * " + between(clauses_.from, clauses_.where);
      return true;
    }
    for (TAt at = clauses_.columns; at != clauses_.from; ++at) {
      if (isSymbolAt(at + 1, '(') && !isRowFunction(*at)) return fail("it calls functions of many rows");
      const bool begins = at == clauses_.columns || isSymbolAt(at - 1, ',');
      const bool ends = at + 1 == clauses_.from || isSymbolAt(at + 1, ',');
      if (begins && ends) plain.push_back(at->name());
    }
    for (const auto* keys : {&plan.partition, &plan.clustering})
      for (const TCassColumn& key : *keys) {
        if (std::find(plain.begin(), plain.end(), key.name) != plain.end()) continue;
        list += ", " + cqlName(key.name);
        ++plan.appended;
      }
    plan.select = "select " + list + " " + between(clauses_.from, clauses_.where);
    return true;
  }

  [[nodiscard]] bool isSymbolAt(TAt at, char c) const { return at != tokens_.end() && at->isSymbol(c); }

  static bool isRowFunction(const TCqlToken& token) {
    const std::string name = token.name();
    return std::find(rowFunctions.begin(), rowFunctions.end(), name) != rowFunctions.end();
  }

  bool readConditions(TRootPlan& plan) {
    if (clauses_.where == clauses_.tail) return true;
    plan.conditions = between(clauses_.where + 1, clauses_.tail);
    const auto equalTo = [&](const TCassColumn& key) { return mentions(key) == 1 && isEqual(key); };
    const bool clusteringNamed = std::any_of(plan.clustering.begin(), plan.clustering.end(),
                                             [&](const TCassColumn& key) { return mentions(key) > 0; });
    const bool partitionNamed = std::any_of(plan.partition.begin(), plan.partition.end(),
                                            [&](const TCassColumn& key) { return mentions(key) > 0; });
    if (clusteringNamed || find(clauses_.where, clauses_.tail, {"token"}) != clauses_.tail)
      return fail("its conditions name clustering columns or tokens");
    plan.onePartition = std::all_of(plan.partition.begin(), plan.partition.end(), equalTo);
    if (partitionNamed && !plan.onePartition) return fail("its conditions name some of the partition key");
    return true;
  }

  [[nodiscard]] bool names(const TCqlToken& token, const TCassColumn& column) const {
    const bool name = token.kind == TCqlToken::TKind::Word || token.kind == TCqlToken::TKind::Name;
    return name && token.name() == column.name;
  }
  [[nodiscard]] std::int64_t mentions(const TCassColumn& column) const {
    return std::count_if(clauses_.where, clauses_.tail, [&](const TCqlToken& t) { return names(t, column); });
  }
  [[nodiscard]] bool isEqual(const TCassColumn& column) const {
    const TAt at =
        std::find_if(clauses_.where, clauses_.tail, [&](const TCqlToken& t) { return names(t, column); });
    return at + 1 != clauses_.tail && (at + 1)->isSymbol('=');
  }

  std::string_view cql_;
  TTokens tokens_;
  const std::vector<TCassColumn>& columns_;
  std::string& why_;
  TClauses clauses_;
};

}  // namespace

std::optional<TRootPlan> planRoot(std::string_view cql, const std::vector<TCassColumn>& columns,
                                  bool oldServer, std::string& why) {
  return TPlanner(cql, columns, why).plan(oldServer);
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

std::string TRootPlan::finish(std::vector<std::string> more, std::int64_t rows) const {
  if (!conditions.empty()) more.insert(more.begin(), conditions);
  std::string cql = select;
  for (std::size_t i = 0; i < more.size(); ++i) cql += (i == 0 ? " where " : " and ") + more[i];
  cql += " limit " + std::to_string(rows);
  // A condition on the table's other columns goes together with one on its key only so.
  const bool allow = filtering || (!conditions.empty() && !onePartition);
  return allow ? cql + " allow filtering" : cql;
}

std::string TRootPlan::firstCql(bool lower, bool upper, std::int64_t rows) const {
  std::vector<std::string> more;
  if (lower) more.push_back(tokenCall(false) + " > ?");
  if (upper) more.push_back(tokenCall(false) + " <= ?");
  return finish(std::move(more), rows);
}

std::string TRootPlan::withinCql(std::size_t depth, std::int64_t rows) const {
  std::vector<std::string> more;
  if (!onePartition)
    for (const TCassColumn& key : partition) more.push_back(cqlName(key.name) + " = ?");
  for (std::size_t i = 0; i < depth; ++i) {
    const char* compare = i + 1 < depth ? " = ?" : clustering[i].descending ? " < ?" : " > ?";
    more.push_back(cqlName(clustering[i].name) + compare);
  }
  return finish(std::move(more), rows);
}

std::string TRootPlan::behindCql(bool upper, std::int64_t rows) const {
  std::vector<std::string> more{tokenCall(false) + " > " + tokenCall(true)};
  if (upper) more.push_back(tokenCall(false) + " <= ?");
  return finish(std::move(more), rows);
}

}  // namespace hollowmere

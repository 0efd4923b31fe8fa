#pragma once

#include <functional>
#include <string>

#include "sqlmongo/sqlstatement.h"

namespace hollowmere {

/// The command for today's shells; lines end in LF. Throws TSqlFault with the reason for what cannot be said.
std::string printModern(const TSqlStatement& statement);

/// The field that a column or function of a condition is to be read from.
using TFieldOf = std::function<std::string(const TSqlColumn& column)>;

/// The query document of a condition, with SQL's meaning: AND binds closer than OR, NOT is carried to the
/// conditions, and a null or missing field fulfils nothing but IS NULL.
std::string modernFilter(const std::optional<TSqlLevel>& condition, const TFieldOf& fieldOf);

/// The aggregation pipeline of a SELECT with DISTINCT, GROUP BY or aggregates.
std::string groupPipeline(const TSqlStatement& statement);

// What both pipelines and finds are made of.

/// A field's name, checked: "$" at its start, expressions and numbers are refused.
std::string fieldName(const TSqlName& name);
/// The field of a plain column; refuses functions.
std::string plainField(const TSqlColumn& column);
/// As a value: true and false, numbers, texts, ObjectId for 24 digits compared with _id.
std::string modernValue(const TSqlValue& value, const std::string& column);
/// 1 or -1.
std::string sortDirection(const TSqlOrder& order);
/// How many rows are skipped; empty: none.
std::string skipped(const TSqlLimit& limit);
/// Refuses LIMIT 0, which the shell takes for no limit.
const std::string& rowCount(const TSqlLimit& limit);

/// Members of an object literal in their order; a key that stands there already is refused.
class TShellObject {
 public:
  void add(const std::string& key, const std::string& value, std::size_t place = 0);
  [[nodiscard]] bool has(const std::string& key) const;
  [[nodiscard]] bool empty() const { return keys_.empty(); }
  [[nodiscard]] std::string text() const { return "{" + text_ + "}"; }

 private:
  std::vector<std::string> keys_;
  std::string text_;
};

/// The stages of a pipeline, one a line.
class TPipeline {
 public:
  void add(const char* stage, const std::string& operand);
  /// $sort, $skip and $limit, as far as there are any.
  void addOrder(const TShellObject& order, const std::optional<TSqlLimit>& limit);
  [[nodiscard]] std::string text() const { return ".aggregate([\n" + stages_ + "\n]);"; }

 private:
  std::string stages_;
};

}  // namespace hollowmere

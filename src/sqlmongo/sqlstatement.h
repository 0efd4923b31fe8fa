#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "sqlmongo/sqlfault.h"

namespace hollowmere {

/// A column, table or alias as it was written, without quotes.
struct TSqlName {
  std::string text;
  bool quoted = false;
  std::size_t place = 0;
};

enum class TSqlFunction { None, Count, Sum, Avg, Min, Max };

/// A column, or a function of one.
struct TSqlColumn {
  TSqlName name;  ///< of a function its argument
  TSqlFunction function = TSqlFunction::None;
  bool all = false;           ///< "*", alone or as the argument
  bool distinct = false;      ///< DISTINCT before it
  bool distinctCall = false;  ///< DISTINCT inside the parentheses
  /// Of a function: what stands in the parentheses is one name, number, text or "*".
  bool goodCall = true;
  TSqlName alias;  ///< empty text: none
  std::size_t place = 0;
};

struct TSqlValue {
  enum TKind {
    Number,  ///< text is a JSON number
    Text,    ///< was quoted
    Word,    ///< an unquoted word that is no number
    Null,
    Code,  ///< of assignments: text is the shell's own, such as true or ISODate("...")
  };
  TKind kind = Null;
  std::string text;
  std::size_t place = 0;
};

/// In pairs: each even one is the opposite of the one behind it.
enum class TSqlOperator {
  Equal,
  NotEqual,
  Less,
  GreaterOrEqual,
  Greater,
  LessOrEqual,
  In,
  NotIn,
  Like,
  NotLike,
  IsNull,
  IsNotNull,
  Between,
  NotBetween,
};

struct TSqlCondition {
  TSqlColumn column;
  TSqlOperator op = TSqlOperator::Equal;
  std::vector<TSqlValue> values;  ///< none of IS NULL, two of BETWEEN, one or more of IN, otherwise one
};

struct TSqlLevel;

/// A condition, or a level in parentheses.
struct TSqlOperand {
  bool negated = false;  ///< an odd number of NOT before it
  bool hasNot = false;
  TSqlCondition condition;
  std::unique_ptr<TSqlLevel> group;
  std::size_t place = 0;
};

/// What AND and OR join outside of further parentheses.
struct TSqlLevel {
  std::vector<TSqlOperand> operands;
  std::vector<bool> ands;  ///< between each two operands: AND (true) or OR
};

struct TSqlAssignment {
  TSqlName column;  ///< empty text: missing
  TSqlValue value;
  bool hasValue = false;
};

struct TSqlOrder {
  TSqlColumn column;
  std::string direction;  ///< the words behind the column in lower case, each with a blank before it
  std::size_t place = 0;
};

struct TSqlLimit {
  std::vector<std::string> numbers;  ///< count, then how many are skipped
  std::size_t place = 0;
};

enum class TSqlKind { Select, Update, Delete };

struct TSqlStatement {
  TSqlKind kind = TSqlKind::Select;
  std::vector<TSqlColumn> columns;
  std::vector<TSqlAssignment> assignments;
  TSqlName table;
  std::optional<TSqlLevel> where;
  std::vector<TSqlName> groupBy;
  std::optional<TSqlLevel> having;
  std::optional<TSqlFault> havingFault;  ///< the classic form never looks into HAVING
  std::vector<TSqlOrder> orderBy;
  std::optional<TSqlLimit> limit;
  std::size_t havingPlace = 0;
};

}  // namespace hollowmere

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "connectors/cassandra/cassschema.h"
#include "connectors/cassandra/cqlselect.h"

namespace hollowmere {

/// How a select statement is read piece by piece: Thrift has no paging, so each piece is a statement of its
/// own that goes on behind the last row's key.
struct TRootPlan {
  std::string select;         ///< up to the table's name, key columns among the columns
  std::string table;          ///< "from" and the table's name
  std::string conditions;     ///< of the statement; may be empty
  bool filtering = false;     ///< allowed by the statement
  bool onePartition = false;  ///< the conditions name the whole partition key
  std::vector<TCassColumn> partition;
  std::vector<TCassColumn> clustering;
  std::size_t appended = 0;  ///< columns at the end that the statement did not ask for
  std::optional<std::int64_t> limit;

  // Statements; rows is the limit of a piece.

  /// From the beginning. Bounds are markers for tokens: above the lower one, up to the upper one.
  [[nodiscard]] std::string firstCql(bool lower, bool upper, std::int64_t rows) const;
  /// Behind the last row within its partition: markers for the partition key and the first depth clustering
  /// columns, the last of which is passed. depth is at least 1.
  [[nodiscard]] std::string withinCql(std::size_t depth, std::int64_t rows) const;
  /// The partitions behind: markers for the partition key, and the upper bound.
  [[nodiscard]] std::string behindCql(bool upper, std::int64_t rows) const;
  /// Makes it a plan for the keys alone.
  void selectKeys();
  /// Counts the rows between such bounds.
  [[nodiscard]] std::string countCql(bool lower, bool upper) const;

 private:
  [[nodiscard]] std::string tokenCall(bool markers) const;
  [[nodiscard]] std::vector<std::string> tokenBounds(bool lower, bool upper) const;
  [[nodiscard]] std::string finish(const std::string& begin, std::vector<std::string> more,
                                   std::int64_t rows) const;
};

/// Plans a statement on a table. Nothing, and the reason in why, when it can only be read at once. oldServer:
/// before version 3, where frozen collections cannot be sent back as they came.
std::optional<TRootPlan> planRoot(const TCqlSelect& select, const std::vector<TCassColumn>& columns,
                                  bool oldServer, std::string& why);

}  // namespace hollowmere

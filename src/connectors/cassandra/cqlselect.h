#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "connectors/cassandra/cqltext.h"

namespace hollowmere {

/// Why a text cannot be the query of a data source, and where; empty when it can, as far as the text alone
/// tells. Parameters are taken for those of a nested query.
std::string selectFault(std::string_view cql);

struct TCqlTable {
  std::string keyspace;  ///< empty when the statement does not name it
  std::string name;
};

/// A select statement in its clauses. Its text has passed selectFault().
class TCqlSelect {
 public:
  using TAt = std::vector<TCqlToken>::const_iterator;

  explicit TCqlSelect(std::string_view cql);
  TCqlSelect(const TCqlSelect&) = delete;
  TCqlSelect& operator=(const TCqlSelect&) = delete;

  // Where the clauses begin, each at the end of the one before; where is tail when there is none.
  TAt columns, from, where, tail, end;
  bool distinct = false;
  bool json = false;

  /// The text between two places, blanks at its ends trimmed.
  [[nodiscard]] std::string between(TAt from, TAt to) const;
  [[nodiscard]] bool isSymbolAt(TAt at, char c) const { return at < end && at->isSymbol(c); }

  /// The table behind FROM, names as the schema has them.
  [[nodiscard]] TCqlTable table() const;
  /// The limit on all rows, when it is a number.
  [[nodiscard]] std::optional<std::int64_t> limit() const;
  /// The first function among the columns that puts rows together; users' own may all do so. Empty: none.
  [[nodiscard]] std::string joiner() const;
  /// Whether it has as many rows as count(*) counts, up to its limit.
  [[nodiscard]] bool isCountable() const;
  /// "select count(*) from " and what stands behind the statement's FROM, without an order.
  [[nodiscard]] std::string countCql() const;
  /// The statement with at most that many rows; as it stands when it has a limit, or gives one row.
  [[nodiscard]] std::string withLimit(std::int64_t rows) const;

 private:
  [[nodiscard]] TAt clause(TAt begin, std::string_view first, std::string_view second) const;
  [[nodiscard]] TAt findTail() const;

  std::string text_;
  std::vector<TCqlToken> tokens_;
};

}  // namespace hollowmere

#pragma once

#include <array>
#include <string_view>

#include "sqlmongo/sqlstatement.h"
#include "sqlmongo/sqltokens.h"

namespace hollowmere {

/// Reads one statement, in two steps because the classic form makes its checks of groups in between. Each
/// throws TSqlFault. The text must outlive it.
class TSqlParser {
 public:
  explicit TSqlParser(std::string_view sql);

  /// The kind, the clauses and their lists.
  void parseLists(TSqlStatement& statement);
  /// WHERE and HAVING.
  void parseConditions(TSqlStatement& statement);

 private:
  enum TClause { Where, GroupBy, Having, OrderBy, Limit, clauseCount };

  void recognise(TSqlStatement& statement);
  void cutClauses(TSqlStatement& statement);
  void cutTail(std::size_t from);
  [[nodiscard]] std::size_t findWord(std::string_view word, std::size_t from) const;
  [[nodiscard]] std::size_t findClause(TClause clause, std::size_t from) const;
  /// The first clause that is found when they are tried in their order.
  [[nodiscard]] std::size_t endOf(std::size_t from, int firstTried) const;
  [[nodiscard]] std::vector<TSqlRange> split(TSqlRange range, const char* emptyItem) const;
  [[nodiscard]] std::size_t placeOf(std::size_t token) const;

  void checkStructure(const TSqlStatement& statement) const;
  void parseSelectList(TSqlStatement& statement) const;
  [[nodiscard]] TSqlColumn parseColumn(TSqlRange item) const;
  void parseSetList(TSqlStatement& statement) const;
  [[nodiscard]] TSqlAssignment parseAssignment(TSqlRange item) const;
  [[nodiscard]] TSqlValue parseAssigned(TSqlRange item) const;
  [[nodiscard]] TSqlValue parseShellCall(TSqlRange item) const;
  [[nodiscard]] TSqlName parseWholeName(TSqlRange item, const char* message) const;
  [[nodiscard]] TSqlOrder parseOrder(TSqlRange item) const;
  [[nodiscard]] TSqlLimit parseLimit() const;

  std::string_view sql_;
  TSqlTokens tokens_;
  std::optional<TSqlRange> columnRange_;  ///< the selected columns, or the assignments
  std::optional<TSqlRange> tableRange_;
  std::array<std::optional<TSqlRange>, clauseCount> clauses_;
  std::vector<TSqlRange> columns_;
  std::vector<TSqlRange> tables_;
  std::vector<TSqlRange> groupBy_;
  std::vector<TSqlRange> having_;
  std::vector<TSqlRange> orderBy_;
  std::vector<TSqlRange> limit_;
};

}  // namespace hollowmere

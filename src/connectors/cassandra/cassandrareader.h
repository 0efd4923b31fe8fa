#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "connectors/cassandra/casssource.h"
#include "connectors/cassandra/casstype.h"
#include "connectors/cassandra/rootpages.h"
#include "connectors/datetimetext.h"
#include "connectors/nosqlcommon.h"
#include "connectors/storeapi.h"

namespace hollowmere {

/// Makes rows of a result: knows the types of its columns.
class TCassRows {
 public:
  explicit TCassRows(TCollectionLengths lengths = TCollectionLengths::Int32) : lengths_(lengths) {}

  void describe(const TCassResult& result);
  /// Whether the result has the column, letter case ignored.
  [[nodiscard]] bool hasColumn(std::string_view name) const;
  /// Throws std::runtime_error naming the column.
  TObject getCassandraBSON(const TCassRow& row, bool ignoreNulls, const TDateTimeText& dates) const;
  /// Of a row that cannot be read: what cannot be is Base64.
  std::string text(const TCassRow& row, const TDateTimeText& dates) const;

 private:
  struct TColumn {
    std::string name;
    std::string classText;
    TCassType type;
  };

  TCollectionLengths lengths_;
  std::vector<TColumn> columns_;
};

class TCassandraReader : public TSourceReader {
 public:
  /// Throws TStoreError (Connect).
  explicit TCassandraReader(const TStoreOptions& options);

  void openRoot(const TDataSource& source, const TShare& share) override;
  std::optional<TObject> next() override { return getCassJSON(); }
  std::string rowText() override;
  [[nodiscard]] bool keepsItsShare() const override { return ranged_; }
  void nested(const TDataSource& source, const TObject& parent, const TRowSink& row) override;

 private:
  /// A nested query, prepared when it first runs.
  struct TNested {
    std::string cql;
    std::vector<std::string> parameters;
    TCassPrepared prepared;
    std::vector<TCassType> types;
  };

  std::optional<TObject> getCassJSON();
  void openPages(TCassSource& source, const TShare& share);
  void openWhole(const TCassSource& source);
  bool nextRow();
  bool nextPiece();
  const TNested& nestedQuery(TCassSource& source);
  [[nodiscard]] const TValue& parameterValue(const TObject& parent, const std::string& name) const;
  std::vector<std::string> processCassandraParams(const TNested& query, const TObject& parent) const;
  TCassResult runNestedOnce(TCassSource& source, const TObject& parent);
  TCassResult runNested(TCassSource& source, const TObject& parent);

  TStoreOptions options_;
  TCassandraClient client_;
  TDateTimeText dates_;
  TCollectionLengths lengths_;
  TCassRows rows_;
  std::optional<TRootPages> pages_;
  TCassResult piece_;
  std::size_t row_ = 0;  ///< the next one in piece_
  bool hasRow_ = false;  ///< the one before it is the current row
  bool ranged_ = false;  ///< the share is a range of tokens, not of rows
  std::optional<std::int64_t> left_;
  std::map<std::string, TNested> nestedQueries_;  ///< by keyspace and statement
  std::vector<const TCassRows*> nesting_;  ///< results whose rows are being handed over, the root's apart
  bool gone_ = false;                      ///< the server was waited for in vain
};

}  // namespace hollowmere

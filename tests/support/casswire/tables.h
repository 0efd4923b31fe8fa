#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace hollowmere::casswire {

using TCell = std::optional<std::string>;
using TRow = std::vector<TCell>;

struct TColumn {
  std::string name;
  std::string type;              ///< CQL text
  std::string kind = "regular";  ///< partition_key, clustering or regular
  std::string classText;         ///< short class text: "Int32Type"
  bool descending = false;
};

/// A table in memory. Partition key columns first, then clustering columns.
struct TTable {
  std::vector<TColumn> columns;
  std::map<std::string, TRow> rows;  ///< by the bytes of the key

  [[nodiscard]] std::size_t columnAt(const std::string& name) const;  ///< columns.size() when it is not there
  [[nodiscard]] std::int64_t token(const TRow& row) const;            ///< of the partition key
  void put(const TRow& row);
  void addTo(TRow row);  ///< puts it, its counters added to those that are there
};

/// Of the bytes of a partition key: spread over all numbers, as a partitioner does.
std::int64_t tokenOf(const std::string& keyBytes);

/// What a statement gives.
struct TRows {
  std::vector<TColumn> columns;
  std::vector<TRow> rows;
};

/// A refusal, with the server's text.
struct TRefusal {
  std::string why;
};

/// Tables, and the statements on them that a client of ours sends: select with conditions on columns and
/// tokens, insert, unlogged batches of inserts, updates of counters. Version texts before "3" have the older
/// schema tables.
class TTables {
 public:
  explicit TTables(const std::string& releaseVersion);

  /// "ks.t"; its columns go into the schema tables.
  void add(const std::string& name, std::vector<TColumn> columns);
  TTable& at(const std::string& name);
  [[nodiscard]] bool hasKeyspace(const std::string& keyspace) const;

  /// Class texts of the markers. Throws TRefusal.
  std::vector<std::string> markers(const std::string& cql, const std::string& keyspace) const;
  /// Throws TRefusal.
  TRows run(const std::string& cql, const std::string& keyspace, const std::vector<std::string>& values);

  /// Takes writes without keeping them; counts rows.
  bool discards = false;
  std::uint64_t written = 0;
  /// Rows that "bench.rows" has without holding them.
  std::int64_t virtualRows = 0;

 private:
  TTable& find(const std::string& keyspace, const std::string& table);
  void addSchema(const std::string& keyspace, const std::string& table, const std::vector<TColumn>& columns);
  [[nodiscard]] std::int64_t virtualKey(std::int64_t row) const;
  [[nodiscard]] std::int64_t virtualRowAbove(std::optional<std::int64_t> bound) const;
  [[nodiscard]] std::int64_t virtualCount(std::optional<std::int64_t> above,
                                          std::optional<std::int64_t> upTo) const;
  TRows virtualSelect(std::optional<std::int64_t> above, std::optional<std::int64_t> upTo,
                      std::int64_t limit) const;

  bool modern_;
  std::map<std::string, TTable> tables_;

  friend class TStatement;
};

std::string bigEndian(std::uint64_t number, int bytes);

}  // namespace hollowmere::casswire

#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "Hbase.h"

namespace hollowmere::hbasewire {

/// HBase's tables in memory: what the service's methods mean, and the error texts of a server of line 2.6.
/// All methods are safe in any thread.
///
/// Filters: PrefixFilter, RowFilter, SingleColumnValueFilter, ValueFilter, PageFilter, KeyOnlyFilter and
/// FirstKeyOnlyFilter, joined by AND and OR; every other one is an error without a reason, as is a bad text.
class TMemoryTables : public HbaseNull {
 public:
  using TVersions = std::map<std::int64_t, std::string, std::greater<>>;
  using TColumns = std::map<std::string, TVersions>;
  using TRows = std::map<std::string, TColumns>;

  // For tests.
  void put(const std::string& table, const std::string& row, const std::string& column,
           const std::string& value);
  [[nodiscard]] std::string value(const std::string& table, const std::string& row,
                                  const std::string& column) const;
  [[nodiscard]] std::size_t rowCount(const std::string& table) const;
  /// Every scanner that is open now is forgotten, as a server does after a while.
  void expireScanners();
  /// The same, and their numbers begin anew, as in a server's new process.
  void restart();
  /// A row that a scan looks at takes that long.
  void setTimePerRow(std::chrono::microseconds time);
  [[nodiscard]] std::size_t openScanners() const;
  /// How many rows all scans gave.
  [[nodiscard]] std::uint64_t rowsGiven() const;
  [[nodiscard]] std::vector<TScan> scans() const;

  // The service.
  void enableTable(const Bytes& table) override;
  void disableTable(const Bytes& table) override;
  bool isTableEnabled(const Bytes& table) override;
  void compact(const Bytes& table) override;
  void majorCompact(const Bytes& table) override;
  void getTableNames(std::vector<Text>& result) override;
  void getColumnDescriptors(std::map<Text, ColumnDescriptor>& result, const Text& table) override;
  void getTableRegions(std::vector<TRegionInfo>& result, const Text& table) override;
  void createTable(const Text& table, const std::vector<ColumnDescriptor>& families) override;
  void deleteTable(const Text& table) override;
  void getVer(std::vector<TCell>& result, const Text& table, const Text& row, const Text& column,
              std::int32_t versions, const std::map<Text, Text>& attributes) override;
  void getRow(std::vector<TRowResult>& result, const Text& table, const Text& row,
              const std::map<Text, Text>& attributes) override;
  void mutateRow(const Text& table, const Text& row, const std::vector<Mutation>& mutations,
                 const std::map<Text, Text>& attributes) override;
  void mutateRows(const Text& table, const std::vector<BatchMutation>& batches,
                  const std::map<Text, Text>& attributes) override;
  void deleteAllRow(const Text& table, const Text& row, const std::map<Text, Text>& attributes) override;
  ScannerID scannerOpenWithScan(const Text& table, const TScan& scan,
                                const std::map<Text, Text>& attributes) override;
  ScannerID scannerOpen(const Text& table, const Text& startRow, const std::vector<Text>& columns,
                        const std::map<Text, Text>& attributes) override;
  void scannerGetList(std::vector<TRowResult>& result, ScannerID id, std::int32_t rows) override;
  void scannerClose(ScannerID id) override;

 private:
  struct TTable {
    std::map<std::string, ColumnDescriptor> families;  ///< by "name:"
    bool enabled = true;
    TRows rows;
  };
  struct TScanner {
    std::string table;
    TScan scan;
    std::string last;  ///< key given last
    bool begun = false;
    std::int64_t passed = 0;
  };

  TTable& find(const std::string& table);
  TTable& findEnabled(const std::string& table);
  void apply(TTable& table, const std::string& name, const std::string& row,
             const std::vector<Mutation>& mutations);

  mutable std::mutex mutex_;
  std::map<std::string, TTable> tables_;
  std::map<ScannerID, TScanner> scanners_;
  ScannerID nextScanner_ = 0;
  std::int64_t clock_ = 1'700'000'000'000;
  std::uint64_t rowsGiven_ = 0;
  std::chrono::microseconds timePerRow_{0};
  std::vector<TScan> scans_;
};

}  // namespace hollowmere::hbasewire

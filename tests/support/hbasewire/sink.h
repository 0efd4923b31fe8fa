#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "Hbase.h"

namespace hollowmere::hbasewire {

/// Takes rows as fast as they come and keeps none; serves as many made rows of ten columns as it is told to.
/// Any table is there, with the families "cf" and "n". All methods are safe in any thread.
class TSink : public HbaseNull {
 public:
  explicit TSink(std::int64_t sourceRows) : sourceRows_(sourceRows) {}

  /// Answers mutateRow and mutateRows without looking at more than the number of rows; nothing for others.
  std::optional<std::string> quick(const std::string& method, const std::string& call);

  [[nodiscard]] std::uint64_t stored() const { return stored_; }
  [[nodiscard]] std::uint64_t served() const { return served_; }

  void getTableNames(std::vector<Text>& result) override;
  bool isTableEnabled(const Bytes& table) override;
  void getColumnDescriptors(std::map<Text, ColumnDescriptor>& result, const Text& table) override;
  ScannerID scannerOpenWithScan(const Text& table, const TScan& scan,
                                const std::map<Text, Text>& attributes) override;
  ScannerID scannerOpen(const Text& table, const Text& startRow, const std::vector<Text>& columns,
                        const std::map<Text, Text>& attributes) override;
  void scannerGetList(std::vector<TRowResult>& result, ScannerID id, std::int32_t rows) override;
  void scannerClose(ScannerID id) override;

 private:
  struct TScanner {
    std::int64_t next = 0;
    std::int64_t end = 0;
    bool keysOnly = false;
  };

  const std::int64_t sourceRows_;
  std::atomic<std::uint64_t> stored_{0};
  std::atomic<std::uint64_t> served_{0};
  std::mutex mutex_;
  std::map<ScannerID, TScanner> scanners_;
  ScannerID nextScanner_ = 0;
};

}  // namespace hollowmere::hbasewire

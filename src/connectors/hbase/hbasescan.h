#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "connectors/hbase/hbaseclient.h"

namespace hollowmere {

/// One pass over a range of a table. When its scanner expires, the connection is lost, or an answer is too
/// long or takes too long, the pass goes on behind the last row that arrived. The scanner is closed in the
/// end, whatever came. The client outlives it.
class THBaseScan {
 public:
  /// first: how many rows are asked for at once until it is seen how long and how large answers are. A
  /// server keeps a call until it has them all, which takes its time when a filter lets few rows pass.
  THBaseScan(THBaseClient& client, THBaseRange range, std::int64_t first);
  THBaseScan(const THBaseScan&) = delete;
  THBaseScan& operator=(const THBaseScan&) = delete;
  ~THBaseScan() { close(); }

  /// Up to that many next rows, often fewer; none: the end. Throws THBaseFault.
  void next(std::int64_t most, std::vector<THBaseRow>& rows);
  void close() noexcept;

  /// The key of the last row that arrived; none yet: empty.
  [[nodiscard]] const std::string& lastKey() const { return lastKey_; }

 private:
  void fetch(std::int32_t most, std::vector<THBaseRow>& rows);
  bool open(std::int32_t batch);
  bool recover(const THBaseFault& fault, std::int32_t& most);
  void pace(std::int32_t asked, const std::vector<THBaseRow>& rows);

  THBaseClient& client_;
  THBaseRange range_;
  bool ended_ = false;
  std::optional<THBaseScanner> scanner_;
  std::int32_t batch_ = 0;  ///< for which the scanner was opened
  std::int32_t atMost_;
  std::chrono::nanoseconds took_{0};  ///< the last answer
  std::string lastKey_;
  int recoveries_ = 0;  ///< since the last rows arrived
};

/// The same rows with their keys and nothing else: as little as can be sent.
THBaseRange keysOnly(THBaseRange range);

}  // namespace hollowmere

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "connectors/hbase/hbaseclient.h"

namespace hollowmere {

/// One pass over a range of a table. When its scanner expires, or the connection is lost, the pass goes on
/// behind the last row that arrived. The scanner is closed in the end, whatever came. The client outlives it.
class THBaseScan {
 public:
  THBaseScan(THBaseClient& client, THBaseRange range);
  THBaseScan(const THBaseScan&) = delete;
  THBaseScan& operator=(const THBaseScan&) = delete;
  ~THBaseScan() { close(); }

  /// Up to that many next rows, fewer when they are large; none: the end. Throws THBaseFault.
  void next(std::int64_t most, std::vector<THBaseRow>& rows);
  void close() noexcept;

  /// The key of the last row that arrived; none yet: empty.
  [[nodiscard]] const std::string& lastKey() const { return lastKey_; }

 private:
  void fetch(std::int32_t most, std::vector<THBaseRow>& rows);
  bool recover(const THBaseFault& fault, std::int32_t& most);
  void limit(const std::vector<THBaseRow>& rows);

  THBaseClient& client_;
  THBaseRange range_;
  bool resumable_;
  bool ended_ = false;
  std::optional<std::int32_t> scanner_;
  std::int32_t atMost_;
  std::string lastKey_;
  int recoveries_ = 0;  ///< since the last rows arrived
};

/// The same rows with their keys and nothing else: as little as can be sent.
THBaseRange keysOnly(THBaseRange range);

/// Whether a pass can begin anew at a key: not when a filter counts the rows that it has let through.
bool canBeginAnywhere(const THBaseRange& range);

}  // namespace hollowmere

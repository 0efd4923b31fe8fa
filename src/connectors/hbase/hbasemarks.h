#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace hollowmere {

/// Row keys that were passed when the rows of a source were counted, so that a thread whose share begins at
/// a row number need not look for it from the table's beginning. Safe from every thread.
class THBaseMarks {
 public:
  /// Every so many rows a key, the first that of row 0.
  static constexpr std::int64_t stride = 5000;

  struct TMark {
    std::int64_t row = 0;  ///< its number, from 0
    std::string key;
  };

  /// name tells server, table and filter.
  void keep(const std::string& name, std::int64_t count, std::vector<std::string> keys);
  /// The last mark at or before a row. Nothing when there is none, when the count is another one, or when
  /// the marks are too old to stand for what is stored now.
  [[nodiscard]] std::optional<TMark> before(const std::string& name, std::int64_t count,
                                            std::int64_t row) const;

 private:
  using TClock = std::chrono::steady_clock;
  static constexpr std::chrono::minutes age{5};
  static constexpr std::size_t mostSources = 100;

  struct TEntry {
    std::int64_t count = 0;
    TClock::time_point at;
    std::vector<std::string> keys;
  };

  mutable std::mutex mutex_;
  std::map<std::string, TEntry> entries_;
};

}  // namespace hollowmere

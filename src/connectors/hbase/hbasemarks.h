#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "connectors/loadtypes.h"

namespace hollowmere {

/// How the rows of a source are parted among the threads of a run: keys that were passed while the rows were
/// counted, and the borders, keys at which the threads' parts begin. A border is settled once, by the thread
/// that comes first, so that the parts neither overlap nor leave a gap whatever becomes of the table.
/// Safe from every thread.
class THBaseMarks : public TSourceNotes {
 public:
  /// Every so many rows a key, the first that of row 0.
  static constexpr std::int64_t stride = 5000;

  struct TMark {
    std::int64_t row = 0;  ///< its number when rows were counted, from 0
    std::string key;
  };

  void keep(std::vector<std::string> keys);
  /// The last mark at or before a row; nothing when there is none.
  [[nodiscard]] std::optional<TMark> before(std::int64_t row) const;

  /// The key at which the part begins whose first row has that number; nothing when it is not settled.
  [[nodiscard]] std::optional<std::string> border(std::int64_t row) const;
  /// Settles a border, and gives the key that holds: another when a thread was quicker, or when the table
  /// has changed so much that this one would stand beyond a neighbour. Never empty.
  std::string settle(std::int64_t row, std::string key);

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> keys_;
  std::map<std::int64_t, std::string> borders_;  ///< by rows; the keys are in order, too
};

}  // namespace hollowmere

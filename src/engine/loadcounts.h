#pragma once

#include <cstdint>

namespace hollowmere {

/// What became of rows. Every row read is counted in exactly one of the three.
struct TLoadCounts {
  std::int64_t loaded = 0;     ///< stored by the target
  std::int64_t discarded = 0;  ///< refused by the target; their text is in the discard file
  std::int64_t skipped = 0;    ///< could not be read or assembled

  [[nodiscard]] std::int64_t processed() const { return loaded + discarded + skipped; }
  TLoadCounts& operator+=(const TLoadCounts& other) {
    loaded += other.loaded;
    discarded += other.discarded;
    skipped += other.skipped;
    return *this;
  }
  bool operator==(const TLoadCounts&) const = default;
};

}  // namespace hollowmere

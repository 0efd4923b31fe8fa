#pragma once

#include <span>
#include <string_view>

namespace hollowmere::fuzz {

/// One parser of outside bytes. run() aborts when the parser breaks its promise; refusing the bytes with
/// its own error is fine.
struct TTarget {
  std::string_view name;
  void (*run)(std::string_view bytes);
  std::string_view seed;  ///< a good input, to be spoilt
};

std::span<const TTarget> targets();

}  // namespace hollowmere::fuzz

#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace hollowmere {

/// Ends a translation. The classic form shows the fixed text; the modern form shows the reason, where there
/// is one.
struct TSqlFault : std::runtime_error {
  TSqlFault(const std::string& fixedText, std::size_t where, std::string why = {})
      : std::runtime_error(fixedText), place(where), reason(std::move(why)) {}

  std::size_t place;
  std::string reason;
};

}  // namespace hollowmere

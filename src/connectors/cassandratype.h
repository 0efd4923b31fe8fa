#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace hollowmere {

/// What stands before the first comma that is in no bracket, and what stands behind it; blanks trimmed.
std::pair<std::string_view, std::string_view> splitAtComma(std::string_view text);

/// A CQL type taken apart. Views into the text it was made from.
struct TCqlType {
  /// Lower-case text such as "map<text, frozen<list<int>>>"; frozen<...> is looked through.
  explicit TCqlType(std::string_view text);

  std::string_view name;     ///< "map", "set", "list", or the whole type
  std::string_view element;  ///< element type, or key type of a map; empty when there is none
  std::string_view value;    ///< value type of a map
  std::string_view items;    ///< types of a tuple's items

  [[nodiscard]] bool isCollection() const { return !element.empty(); }
};

}  // namespace hollowmere

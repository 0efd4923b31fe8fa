#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

#include "json/value.h"
#include "settings/connectionrecord.h"

namespace hollowmere {

/// One member of a data source's query object, and its caption in the designer.
struct TQueryMember {
  std::string_view member;
  std::string_view caption;
  bool isQuery = false;  ///< a longer text, in the store's own language
};

/// The members for a store type, in the order in which they are kept; none for a type whose data sources
/// are files.
std::span<const TQueryMember> queryMembers(std::string_view dbType);

/// One line about a definition, for lists: "Not Configured", a file name, or the members' values.
std::string definitionSummary(const TValue& definition);

}  // namespace hollowmere

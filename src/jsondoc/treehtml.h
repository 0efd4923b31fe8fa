#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "jsondoc/jsontree.h"

namespace hollowmere {

/// The rows of a tree as an HTML table of name, value and kind, the names set in by their depth, for
/// printing. Nothing when there are more rows than that.
std::optional<std::string> treeHtml(const TJsonTree& tree, std::size_t mostRows);

}  // namespace hollowmere

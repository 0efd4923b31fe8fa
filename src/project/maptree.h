#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "connectors/loadtypes.h"

namespace hollowmere {

/// The way to a node of the mapping tree: the place among its siblings, from the top level down. Empty:
/// the forest itself.
using TNodePath = std::vector<std::size_t>;

/// The node at a path, or nullptr when there is none.
TMapNode* nodeAt(std::vector<TMapNode>& forest, const TNodePath& path);
const TMapNode* nodeAt(const std::vector<TMapNode>& forest, const TNodePath& path);
/// The list in which the node of a path stands, or nullptr.
std::vector<TMapNode>* siblingsAt(std::vector<TMapNode>& forest, const TNodePath& path);
/// Whether one path leads to the other's node or to one above it.
bool isAbove(const TNodePath& upper, const TNodePath& lower);
/// The path after this one in reading order, or empty behind the last. An empty path gives the first.
TNodePath nextPath(const std::vector<TMapNode>& forest, const TNodePath& path);
/// The next node behind a place, going round, whose source or target holds the text, letter case ignored.
/// Empty when there is none.
TNodePath findNode(const std::vector<TMapNode>& forest, std::string_view text, const TNodePath& behind);

}  // namespace hollowmere

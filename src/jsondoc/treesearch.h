#pragma once

#include "jsondoc/jsontree.h"

namespace hollowmere {

/// TJsonTree::find().
TJsonPlace findInTree(TJsonBranch& root, TJsonPlace behind, bool forward, const TJsonTree::TSuits& suits);

/// TJsonTree::visit(); false when the taker gave it.
bool visitRows(const TJsonBranch& branch, const TJsonTree::TSuits& more);

}  // namespace hollowmere

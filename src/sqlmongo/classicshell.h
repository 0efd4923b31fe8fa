#pragma once

#include <string>

#include "sqlmongo/sqlstatement.h"

namespace hollowmere {

/// The checks of GROUP BY against the selected columns. Throws TSqlFault.
void checkClassicGroups(const TSqlStatement& statement);

/// The command for shells that have group, update and remove; lines end in CR. Throws TSqlFault.
std::string printClassic(const TSqlStatement& statement);

/// The query document of a condition; the empty object without one.
std::string classicFilter(const std::optional<TSqlLevel>& where);

}  // namespace hollowmere

#pragma once

#include <string>
#include <string_view>

#include "sqlmongo/sqltomongo.h"

namespace hollowmere {

/// Which commands a translated SQL statement is to use: those of the server's time, or of one form.
enum class TSqlFormChoice { ByServer, Classic, Modern };

/// The form for a server of that version ("3.6.23"; "Unknown" counts as today's): the classic one below 4.2,
/// which removed group, unless the user fixed it.
TShellForm sqlFormFor(std::string_view serverVersion, TSqlFormChoice userChoice);

/// Whether what stands in a query editor is SQL, not a command of the shell.
bool isSqlStatement(std::string_view text);

/// Why a query is refused before it is run; empty when it is not.
std::string queryFault(std::string_view text);

}  // namespace hollowmere

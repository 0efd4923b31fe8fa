#pragma once

#include <string_view>

namespace hollowmere {

/// The commands that a translated SQL statement may use.
enum class TSqlForm {
  Legacy,  ///< group, update and remove: servers that still have group
  Today,   ///< aggregate, updateMany and deleteMany
};

/// What the user chose: a form, or to go by the server.
enum class TSqlFormChoice { ByServer, Legacy, Today };

/// The form for a server of that version ("3.6.23"; "Unknown" counts as today's): the legacy one below 4.2,
/// which removed group, unless the user fixed it.
TSqlForm sqlFormFor(std::string_view serverVersion, TSqlFormChoice userChoice);

}  // namespace hollowmere

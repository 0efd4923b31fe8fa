#pragma once

#include "sqlmongo/sqlstatement.h"
#include "sqlmongo/sqltokens.h"

namespace hollowmere {

/// The tree of a WHERE or HAVING condition. Throws TSqlFault.
TSqlLevel parseCondition(const std::vector<TSqlToken>& tokens, TSqlRange range);

/// A column "FUNC ( argument )" that begins at a token; gives the token behind it. Nothing when the tokens do
/// not begin one. A call that is wrong inside its parentheses is marked, not refused.
std::optional<std::size_t> parseCall(const std::vector<TSqlToken>& tokens, TSqlRange range,
                                     TSqlColumn& column);

/// A name that begins at a token: quoted and plain pieces without blanks between them are one. Gives the
/// token behind it, or nothing.
std::optional<std::size_t> parseName(const std::vector<TSqlToken>& tokens, TSqlRange range, TSqlName& name);

}  // namespace hollowmere

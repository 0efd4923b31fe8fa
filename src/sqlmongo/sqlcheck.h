#pragma once

#include <optional>
#include <string>

#include "sqlmongo/sqltokens.h"

namespace hollowmere {

struct TSqlSyntaxFault {
  std::string message;  ///< the SQL parser's own
  std::size_t place;    ///< in the text the tokens are of
};

/// Has PostgreSQL's grammar read the tokens as the condition of a SELECT; nothing when it is sound. The
/// grammar is to judge structure, not the dialect: each word that is no keyword of a condition is handed over
/// as a quoted name, so that reserved words, dotted paths and hyphens pass, and nothing but a condition does.
std::optional<TSqlSyntaxFault> checkCondition(const std::vector<TSqlToken>& tokens, TSqlRange range);

}  // namespace hollowmere

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace hollowmere {

/// One statement that a user gave to a shell.
struct TShellStatement {
  enum class TKind {
    Expression,  ///< has a value that the shell shows
    Other,       ///< a declaration, loop and the like, as it stands
    Use,         ///< text is the database
    ShowDatabases,
    ShowCollections,
    ShowUsers,
    ShowRoles,
    Exit,
  };
  TKind kind = TKind::Expression;
  std::string text;
};

/// Cuts a text into statements at semicolons and line ends, as a shell that reads line by line would: not
/// within brackets, texts, comments and regular expressions, and not where a line goes on with an operator or
/// a dot.
std::vector<TShellStatement> splitStatements(std::string_view text);

}  // namespace hollowmere

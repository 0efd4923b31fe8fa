#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace hollowmere {

/// Which shell is to understand the text.
enum class TShellForm {
  Classic,  ///< shells that still have group, update and remove; docs/sql-for-mongodb.md names its oddities
  Modern,   ///< today's shells: aggregation pipelines, updateMany, deleteMany, countDocuments
};

/// A translated statement, or why it was refused.
struct TSqlToMongo {
  std::string
      shellText;        ///< empty when refused; lines end in CR in the classic form, in LF in the modern one
  std::string message;  ///< for the user, as it stands; empty when translated
  std::size_t place = 0;  ///< of what was refused: bytes of the SQL text before it

  [[nodiscard]] bool translated() const { return message.empty(); }
};

/// Translates one SELECT, UPDATE or DELETE statement (UTF-8) into the text of a MongoDB shell command. Never
/// throws for any text; may be called from any thread.
TSqlToMongo SqlToMongo(std::string_view sql, TShellForm form = TShellForm::Classic);

/// "line 1, column 5" of a place in a text; both count from 1, columns count characters.
std::string placeText(std::string_view sql, std::size_t place);

}  // namespace hollowmere

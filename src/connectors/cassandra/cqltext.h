#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace hollowmere {

struct TCqlToken {
  enum class TKind {
    Word,       ///< an unquoted name or keyword
    Name,       ///< a name in double quotes
    Text,       ///< in single quotes or $$
    Number,     ///< begins with a digit: also a uuid or a blob
    Parameter,  ///< :name, :"name", or :name as the whole of a text in single quotes
    Symbol,     ///< any other character
  };

  /// A keyword in any letter case.
  [[nodiscard]] bool isWord(std::string_view keyword) const;
  [[nodiscard]] bool isSymbol(char c) const { return kind == TKind::Symbol && text[0] == c; }
  /// The name as the schema has it: unquoted ones in lower case.
  [[nodiscard]] std::string name() const;
  /// The name of a parameter, without its colon and quotes.
  [[nodiscard]] std::string parameter() const;

  TKind kind = TKind::Symbol;
  std::string_view text;  ///< as it stands
  std::size_t begin = 0;  ///< in the statement
};

/// The statement in pieces; blanks and comments are left out.
std::vector<TCqlToken> cqlTokens(std::string_view cql);

/// A name as a statement must have it: in double quotes only where it needs them.
std::string cqlName(std::string_view name);
/// A text in single quotes.
std::string cqlQuoted(std::string_view text);

/// A statement whose parameters have become markers.
struct TMarkedCql {
  std::string cql;
  std::vector<std::string> parameters;  ///< names in the order of the markers
};
TMarkedCql markParameters(std::string_view cql);

/// The statement with a blank in the place of each comment.
std::string withoutComments(std::string_view cql);

}  // namespace hollowmere

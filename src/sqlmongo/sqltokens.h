#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hollowmere {

enum class TSqlTokenKind {
  Word,    ///< a name, keyword or number: all up to a blank, a quote or a symbol
  Text,    ///< 'x'
  Name,    ///< "x" or `x`: a name where a column is expected, a text where a value is
  Symbol,  ///< one of ( ) , * ; = <> < > <= >=
};

/// A piece of the SQL text, which must outlive it.
struct TSqlToken {
  TSqlTokenKind kind;
  std::string_view text;  ///< of quoted kinds what stands between the quotes; "!=" and "> =" read "<>", ">="
  std::size_t begin;      ///< bytes of the SQL text before it
  std::size_t end;        ///< and up to its end

  [[nodiscard]] bool isWord(std::string_view word) const;  ///< letter case ignored
  [[nodiscard]] bool isSymbol(std::string_view symbol) const;
  [[nodiscard]] bool isName() const { return kind == TSqlTokenKind::Word || kind == TSqlTokenKind::Name; }
  /// The text, a doubled quote in it read as one.
  [[nodiscard]] std::string content() const;
};

struct TSqlTokens {
  std::vector<TSqlToken> list;
  std::optional<std::size_t> openQuote;  ///< where a quote stands that nothing closes
};

TSqlTokens tokenizeSql(std::string_view sql);

/// Some of the tokens: from begin up to, not with, end.
struct TSqlRange {
  std::size_t begin = 0;
  std::size_t end = 0;

  [[nodiscard]] bool empty() const { return begin == end; }
  [[nodiscard]] std::size_t size() const { return end - begin; }
};

}  // namespace hollowmere

#include "sqlmongo/sqlcheck.h"

#include <pg_query.h>

#include <algorithm>
#include <array>

#include "sqlmongo/shelltext.h"

namespace hollowmere {

namespace {

bool isKeyword(const TSqlToken& token) {
  static constexpr std::array<std::string_view, 8> keywords{
      "and", "or", "not", "in", "like", "is", "null", "between",
  };
  return std::any_of(keywords.begin(), keywords.end(),
                     [&](std::string_view word) { return token.isWord(word); });
}

void appendQuoted(std::string& out, char quote, std::string_view text) {
  out += quote;
  for (const char c : text) out.append(c == quote ? 2 : 1, c);
  out += quote;
}

void appendToken(std::string& out, const TSqlToken& token) {
  if (token.kind == TSqlTokenKind::Symbol || isKeyword(token))
    out += token.text;
  else if (token.kind != TSqlTokenKind::Word)
    appendQuoted(out, '\'', token.content());
  else if (const auto number = numberText(token); number)
    out += *number;
  else
    appendQuoted(out, '"', token.text);
}

/// The parser shows a word with the quotes that were put around it.
std::string unquoted(std::string message) {
  for (std::size_t at = message.find("\"\""); at != std::string::npos; at = message.find("\"\"", at + 1))
    message.erase(at, 1);
  return message;
}

/// What the parser is asked, and where in it each token stands.
class TQuestion {
 public:
  TQuestion(const std::vector<TSqlToken>& tokens, TSqlRange range) : tokens_(tokens), range_(range) {
    for (std::size_t i = range.begin; i < range.end; ++i) {
      starts_.push_back(text_.size());
      appendToken(text_, tokens[i]);
      text_ += ' ';
    }
  }

  [[nodiscard]] const std::string& text() const { return text_; }

  /// Of the character that the parser counted, from 1.
  [[nodiscard]] std::size_t place(int character) const {
    if (starts_.empty()) return range_.begin == 0 ? 0 : tokens_[range_.begin - 1].end;
    const std::size_t byte = byteOf(character);
    const auto next = std::upper_bound(starts_.begin(), starts_.end(), byte);
    const auto index = static_cast<std::size_t>(next - starts_.begin());
    const TSqlToken& token = tokens_[range_.begin + (index == 0 ? 0 : index - 1)];
    return byte + 1 < text_.size() ? token.begin : token.end;
  }

 private:
  [[nodiscard]] std::size_t byteOf(int character) const {
    std::size_t byte = 0;
    for (int count = 0; byte < text_.size(); ++byte)
      if ((text_[byte] & 0xC0) != 0x80 && ++count == character) break;
    return byte;
  }

  const std::vector<TSqlToken>& tokens_;
  TSqlRange range_;
  std::string text_ = "select * from test where ";
  std::vector<std::size_t> starts_;
};

}  // namespace

std::optional<TSqlSyntaxFault> checkCondition(const std::vector<TSqlToken>& tokens, TSqlRange range) {
  const TQuestion question(tokens, range);
  // Of the library's calls that parse this is the cheapest: it does not write the tree out.
  const PgQuerySplitResult answer = pg_query_split_with_parser(question.text().c_str());
  std::optional<TSqlSyntaxFault> fault;
  if (answer.error)
    fault = {unquoted(answer.error->message), question.place(answer.error->cursorpos)};
  else if (answer.n_stmts != 1)
    fault = {"more than one statement", question.place(0)};
  pg_query_free_split_result(answer);
  return fault;
}

}  // namespace hollowmere

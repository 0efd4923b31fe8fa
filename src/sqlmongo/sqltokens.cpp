#include "sqlmongo/sqltokens.h"

#include <algorithm>
#include <array>

#include "json/value.h"

namespace hollowmere {

namespace {

constexpr std::string_view blanks = " \t\r\n\f\v";
constexpr std::string_view quotes = "'\"`";
constexpr std::string_view marks = "(),*;=<>";

bool oneOf(char c, std::string_view set) { return set.find(c) != std::string_view::npos; }

/// The bytes that end a word.
constexpr std::array<bool, 256> wordEnds = [] {
  std::array<bool, 256> ends{};
  for (const std::string_view set : {blanks, quotes, marks})
    for (const char c : set) ends[static_cast<unsigned char>(c)] = true;
  return ends;
}();

class TTokenizer {
 public:
  explicit TTokenizer(std::string_view sql) : sql_(sql) {}

  TSqlTokens run() {
    // A token takes some four bytes with the blank behind it.
    tokens_.list.reserve(sql_.size() / 4 + 4);
    for (skipBlanks(); at_ < sql_.size(); skipBlanks()) {
      if (oneOf(sql_[at_], quotes))
        quoted();
      else if (oneOf(sql_[at_], marks) || sql_.substr(at_, 2) == "!=")
        symbol();
      else
        word();
    }
    return std::move(tokens_);
  }

 private:
  void skipBlanks() { at_ = std::min(sql_.find_first_not_of(blanks, at_), sql_.size()); }

  void add(TSqlTokenKind kind, std::string_view text, std::size_t end) {
    tokens_.list.push_back({kind, text, at_, end});
    at_ = end;
  }

  void quoted() {
    const char quote = sql_[at_];
    const std::size_t open = at_ + 1;
    std::size_t close = sql_.find(quote, open);
    while (close != std::string_view::npos && sql_.substr(close + 1, 1) == std::string_view(&quote, 1))
      close = sql_.find(quote, close + 2);
    if (close == std::string_view::npos) {
      tokens_.openQuote = at_;
      close = sql_.size();
    }
    add(quote == '\'' ? TSqlTokenKind::Text : TSqlTokenKind::Name, sql_.substr(open, close - open),
        std::min(close + 1, sql_.size()));
  }

  /// The parts of "<", ">", "=" that make one operator may stand apart.
  void symbol() {
    const char first = sql_[at_];
    if (first == '!') return add(TSqlTokenKind::Symbol, "<>", at_ + 2);
    const std::size_t next = std::min(sql_.find_first_not_of(blanks, at_ + 1), sql_.size());
    const char second = next < sql_.size() ? sql_[next] : ' ';
    if (first == '<' && second == '>') return add(TSqlTokenKind::Symbol, "<>", next + 1);
    if (first == '<' && second == '=') return add(TSqlTokenKind::Symbol, "<=", next + 1);
    if (first == '>' && second == '=') return add(TSqlTokenKind::Symbol, ">=", next + 1);
    add(TSqlTokenKind::Symbol, sql_.substr(at_, 1), at_ + 1);
  }

  void word() {
    std::size_t end = at_ + 1;
    while (end < sql_.size() && !wordEnds[static_cast<unsigned char>(sql_[end])] &&
           !(sql_[end] == '!' && sql_.substr(end, 2) == "!="))
      ++end;
    add(TSqlTokenKind::Word, sql_.substr(at_, end - at_), end);
  }

  std::string_view sql_;
  std::size_t at_ = 0;
  TSqlTokens tokens_;
};

}  // namespace

bool TSqlToken::isWord(std::string_view word) const {
  return kind == TSqlTokenKind::Word && equalIgnoringCase(text, word);
}

bool TSqlToken::isSymbol(std::string_view symbol) const {
  return kind == TSqlTokenKind::Symbol && text == symbol;
}

std::string TSqlToken::content() const {
  if (kind != TSqlTokenKind::Text && kind != TSqlTokenKind::Name) return std::string(text);
  // Between the quotes a quote of their own kind stands only twice; the kind is known from the first seen.
  std::string out;
  out.reserve(text.size());
  const char* own = text.data() - 1;
  for (std::size_t i = 0; i < text.size(); ++i) {
    out += text[i];
    if (text[i] == *own) ++i;
  }
  return out;
}

TSqlTokens tokenizeSql(std::string_view sql) { return TTokenizer(sql).run(); }

}  // namespace hollowmere

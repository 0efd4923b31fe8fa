#include "connectors/cassandra/cqltext.h"

#include <algorithm>
#include <array>

#include "connectors/textpiece.h"
#include "json/value.h"

namespace hollowmere {

namespace {

using TPiece = TCqlToken::TKind;

bool startsName(char c) { return c == '_' || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool continuesName(char c) { return startsName(c) || isDigit(c) || c == '$'; }
bool continuesParameter(char c) { return continuesName(c) || c == '.' || c == '#'; }

class TTokenizer {
 public:
  explicit TTokenizer(std::string_view cql) : cql_(cql) {}

  std::vector<TCqlToken> all() {
    while (skipBlanks()) {
      const std::size_t begin = at_;
      const TPiece kind = piece();
      tokens_.push_back({kind, cql_.substr(begin, at_ - begin), begin});
      if (tokens_.back().isSymbol('{')) ++braces_;
      if (tokens_.back().isSymbol('}') && braces_ > 0) --braces_;
    }
    return std::move(tokens_);
  }

 private:
  [[nodiscard]] char look(std::size_t ahead = 0) const {
    return at_ + ahead < cql_.size() ? cql_[at_ + ahead] : '\0';
  }

  template <typename Continues>
  void pass(const Continues& continues) {
    while (at_ < cql_.size() && continues(cql_[at_])) ++at_;
  }

  void passUntil(std::string_view end) {
    const std::size_t found = cql_.find(end, at_);
    at_ = found == std::string_view::npos ? cql_.size() : found + end.size();
  }

  /// False at the end.
  bool skipBlanks() {
    for (;;) {
      pass([](char c) { return static_cast<unsigned char>(c) <= ' '; });
      const std::string_view two = cql_.substr(std::min(at_, cql_.size()), 2);
      if (two == "--" || two == "//")
        passUntil("\n");
      else if (two == "/*" && cql_.find("*/", at_ + 2) != std::string_view::npos)
        passUntil("*/");
      else
        return at_ < cql_.size();
    }
  }

  /// Past the quoted text that begins here; a doubled quote is one.
  void passQuoted(char quote) {
    for (++at_; at_ < cql_.size(); ++at_) {
      if (cql_[at_] != quote) continue;
      ++at_;
      if (look() != quote) return;
    }
  }

  /// In a map a colon behind a key is none of a parameter.
  [[nodiscard]] bool behindKey() const {
    if (braces_ == 0 || tokens_.empty()) return false;
    const TCqlToken& last = tokens_.back();
    return !last.isSymbol(',') && !last.isSymbol('{') && !last.isSymbol(':');
  }

  TPiece piece() {
    const char c = look();
    if (c == '\'') return textPiece();
    if (c == '"') {
      passQuoted('"');
      return TPiece::Name;
    }
    if (c == '$' && look(1) == '$') {
      at_ += 2;
      passUntil("$$");
      return TPiece::Text;
    }
    if (startsName(c)) {
      pass(continuesName);
      return TPiece::Word;
    }
    if (isDigit(c)) {
      pass([](char d) { return continuesName(d) || d == '.' || d == '-'; });
      return TPiece::Number;
    }
    ++at_;
    const bool named = startsName(look()) || look() == '"';
    if (c != ':' || !named || behindKey()) return TPiece::Symbol;
    if (look() == '"')
      passQuoted('"');
    else
      pass(continuesParameter);
    return TPiece::Parameter;
  }

  TPiece textPiece() {
    const std::size_t begin = at_;
    passQuoted('\'');
    const std::string_view text = cql_.substr(begin, at_ - begin);
    const bool parameter = text.size() > 3 && text[1] == ':' && startsName(text[2]) &&
                           std::all_of(text.begin() + 2, text.end() - 1, continuesParameter);
    return parameter ? TPiece::Parameter : TPiece::Text;
  }

  std::string_view cql_;
  std::size_t at_ = 0;
  int braces_ = 0;
  std::vector<TCqlToken> tokens_;
};

/// Those that CQL 3 reserves; other keywords may be names.
constexpr std::array<std::string_view, 58> reserved{
    "add",    "allow",    "alter",        "and",     "apply",       "asc",      "authorize", "batch",
    "begin",  "by",       "columnfamily", "create",  "default",     "delete",   "desc",      "describe",
    "drop",   "entries",  "execute",      "from",    "full",        "grant",    "if",        "in",
    "index",  "infinity", "insert",       "into",    "is",          "keyspace", "limit",     "materialized",
    "mbean",  "mbeans",   "modify",       "nan",     "norecursive", "not",      "null",      "of",
    "on",     "or",       "order",        "primary", "rename",      "replace",  "revoke",    "schema",
    "select", "set",      "table",        "to",      "token",       "truncate", "unlogged",  "unset",
    "update", "use"};
constexpr std::array<std::string_view, 4> reservedToo{"using", "view", "where", "with"};

bool isReserved(std::string_view name) {
  return std::find(reserved.begin(), reserved.end(), name) != reserved.end() ||
         std::find(reservedToo.begin(), reservedToo.end(), name) != reservedToo.end();
}

}  // namespace

bool TCqlToken::isWord(std::string_view keyword) const {
  return kind == TPiece::Word && equalIgnoringCase(text, keyword);
}

std::string TCqlToken::name() const {
  if (kind == TPiece::Name)
    return replaceAll(text.substr(1, text.size() - (text.size() > 1 ? 2 : 1)), "\"\"", "\"");
  std::string lower(text);
  for (char& c : lower)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return lower;
}

std::string TCqlToken::parameter() const { return replaceAll(replaceAll(text, "'", ""), "\"", "").substr(1); }

std::vector<TCqlToken> cqlTokens(std::string_view cql) { return TTokenizer(cql).all(); }

std::string cqlName(std::string_view name) {
  const bool plain = !name.empty() && startsName(name[0]) && name[0] != '_' &&
                     std::all_of(name.begin(), name.end(), [](char c) {
                       return continuesName(c) && c != '$' && !(c >= 'A' && c <= 'Z');
                     });
  if (plain && !isReserved(name)) return std::string(name);
  return '"' + replaceAll(name, "\"", "\"\"") + '"';
}

std::string cqlQuoted(std::string_view text) { return '\'' + replaceAll(text, "'", "''") + '\''; }

TMarkedCql markParameters(std::string_view cql) {
  TMarkedCql marked;
  std::size_t from = 0;
  for (const TCqlToken& token : cqlTokens(cql)) {
    if (token.kind != TPiece::Parameter) continue;
    marked.parameters.push_back(token.parameter());
    marked.cql.append(cql, from, token.begin - from).append("?");
    from = token.begin + token.text.size();
  }
  marked.cql.append(cql, from);
  return marked;
}

std::string withoutComments(std::string_view cql) {
  std::string plain;
  std::size_t end = 0;
  const auto addGap = [&](std::size_t to) {
    const std::string_view gap = cql.substr(end, to - end);
    plain += trimmed(gap).empty() ? gap : std::string_view(" ");
  };
  for (const TCqlToken& token : cqlTokens(cql)) {
    addGap(token.begin);
    plain += token.text;
    end = token.begin + token.text.size();
  }
  addGap(cql.size());
  return plain;
}

}  // namespace hollowmere

#include "connectors/cassandra/cqlselect.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "connectors/textpiece.h"

namespace hollowmere {

namespace {

/// The server's own functions of one row. Besides these, those that turn types into blobs and back.
constexpr std::array<std::string_view, 15> rowFunctions{"writetime",
                                                        "ttl",
                                                        "token",
                                                        "cast",
                                                        "now",
                                                        "uuid",
                                                        "dateof",
                                                        "unixtimestampof",
                                                        "tounixtimestamp",
                                                        "totimestamp",
                                                        "mintimeuuid",
                                                        "todate",
                                                        "maxtimeuuid",
                                                        "tojson",
                                                        "fromjson"};

bool isRowFunction(const std::string& name) {
  return std::find(rowFunctions.begin(), rowFunctions.end(), name) != rowFunctions.end() ||
         name.starts_with("blobas") || name.ends_with("asblob");
}

constexpr std::string_view openings = "([{", closings = ")]}";
bool isOpening(char c) { return openings.find(c) != std::string_view::npos; }
bool isClosing(char c) { return closings.find(c) != std::string_view::npos; }

/// Finds what a server would say less clearly, or what it would do although nobody reads it.
class TFaults {
 public:
  explicit TFaults(std::string_view cql) : cql_(cql), tokens_(cqlTokens(cql)) {}

  std::string first() {
    if (tokens_.empty()) return "Invalid CQL query: it is empty";
    const TCqlToken& begin = tokens_[0];
    if (!begin.isWord("select"))
      return fault("a data source is a SELECT statement, and this one begins with " + quoted(begin), begin);
    for (at_ = 0; at_ < tokens_.size(); ++at_)
      if (std::string found = look(tokens_[at_]); !found.empty()) return found;
    if (!open_.empty())
      return fault("the bracket " + quoted(*open_.back()) + " is not closed", *open_.back());
    return hasFrom_ ? "" : "Invalid CQL query: it names no table behind FROM";
  }

 private:
  [[nodiscard]] std::string fault(const std::string& what, const TCqlToken& token) const {
    const std::string_view before = cql_.substr(0, token.begin);
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    const std::string_view onLine = before.substr(before.rfind('\n') + 1);
    const auto column = 1 + std::count_if(onLine.begin(), onLine.end(), startsCharacter);
    return "Invalid CQL query: " + what + " (line " + std::to_string(line) + ", column " +
           std::to_string(column) + ")";
  }

  /// The token's beginning, no character cut.
  [[nodiscard]] std::string quoted(const TCqlToken& token) const {
    std::size_t to = token.begin + std::min<std::size_t>(token.text.size(), 30);
    while (to < cql_.size() && !startsCharacter(cql_[to])) ++to;
    return '"' + std::string(cql_.substr(token.begin, to - token.begin)) + '"';
  }

  static bool startsCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }

  std::string look(const TCqlToken& token) {
    using TKind = TCqlToken::TKind;
    hasFrom_ = hasFrom_ || (open_.empty() && token.isWord("from"));
    if (isTorn(token)) return fault("the text in quotes does not end", token);
    if (token.kind == TKind::Parameter) return lookAtParameter(token);
    if (token.kind != TKind::Symbol) return {};
    const char c = token.text[0];
    if (isOpening(c)) open_.push_back(&token);
    if (isClosing(c)) return close(token);
    switch (c) {
      case '?': return fault("a parameter has a name, as in :name", token);
      case ':': return isMapColon() ? "" : fault("no name of a parameter stands behind the colon", token);
      case ';': return lookBehind();
      case '/':
        return cql_.substr(token.begin, 2) == "/*" ? fault("the comment does not end", token) : std::string();
      default: return {};
    }
  }

  static bool isTorn(const TCqlToken& token) {
    const std::size_t quote = token.text.find_first_of("'\"$");
    const bool quoted = token.kind == TCqlToken::TKind::Text || token.kind == TCqlToken::TKind::Name ||
                        token.kind == TCqlToken::TKind::Parameter;
    if (!quoted || quote == std::string_view::npos) return false;
    if (token.text[0] == '$') return token.text.size() < 4 || !token.text.ends_with("$$");
    return token.text[quote] != '$' &&
           std::count(token.text.begin(), token.text.end(), token.text[quote]) % 2 != 0;
  }

  [[nodiscard]] std::string lookAtParameter(const TCqlToken& token) const {
    const std::string name = token.parameter();
    const bool bad =
        name.empty() || name.starts_with('.') || name.ends_with('.') || name.find("..") != std::string::npos;
    return bad ? fault(quoted(token) + " is no name of a parameter", token) : "";
  }

  std::string close(const TCqlToken& token) {
    const char wanted = openings[closings.find(token.text[0])];
    if (open_.empty() || !open_.back()->isSymbol(wanted))
      return fault("the bracket " + quoted(token) + " closes none", token);
    open_.pop_back();
    return {};
  }

  /// Behind a key of a map.
  [[nodiscard]] bool isMapColon() const {
    if (open_.empty() || !open_.back()->isSymbol('{')) return false;
    const TCqlToken& before = tokens_[at_ - 1];
    return !before.isSymbol('{') && !before.isSymbol(',') && !before.isSymbol(':');
  }

  [[nodiscard]] std::string lookBehind() const {
    for (std::size_t i = at_ + 1; i < tokens_.size(); ++i)
      if (!tokens_[i].isSymbol(';'))
        return fault(quoted(tokens_[i]) + " stands behind the statement's end", tokens_[i]);
    return {};
  }

  std::string_view cql_;
  std::vector<TCqlToken> tokens_;
  std::size_t at_ = 0;
  std::vector<const TCqlToken*> open_;
  bool hasFrom_ = false;
};

}  // namespace

std::string selectFault(std::string_view cql) { return TFaults(cql).first(); }

TCqlSelect::TCqlSelect(std::string_view cql) : text_(withoutComments(cql)), tokens_(cqlTokens(text_)) {
  end = tokens_.end();
  while (end != tokens_.begin() && (end - 1)->isSymbol(';')) --end;
  columns = end == tokens_.begin() ? end : tokens_.begin() + 1;
  const auto follows = [this](std::string_view word) {
    const bool there = columns != end && columns->isWord(word) && columns + 1 != end;
    return there && !(columns + 1)->isSymbol(',') && !(columns + 1)->isWord("from") &&
           !(columns + 1)->isWord("as");
  };
  distinct = follows("distinct");
  json = follows("json");
  from = clause(columns, "from", {});
  tail = findTail();
  where = std::min(clause(from, "where", {}), tail);
}

/// The first place of those words outside of brackets.
TCqlSelect::TAt TCqlSelect::clause(TAt begin, std::string_view first, std::string_view second) const {
  int depth = 0;
  for (TAt at = begin; at < end; ++at) {
    if (at->kind == TCqlToken::TKind::Symbol) {
      depth += isOpening(at->text[0]) ? 1 : isClosing(at->text[0]) ? -1 : 0;
      continue;
    }
    const bool both = second.empty() || (at + 1 < end && (at + 1)->isWord(second));
    if (depth == 0 && both && at->isWord(first)) return at;
  }
  return end;
}

/// "group" and "per" alone may be columns.
TCqlSelect::TAt TCqlSelect::findTail() const {
  return std::min({clause(from, "order", "by"), clause(from, "limit", {}), clause(from, "group", "by"),
                   clause(from, "per", "partition"), clause(from, "allow", "filtering")});
}

std::string TCqlSelect::between(TAt first, TAt last) const {
  const auto place = [this](TAt at) { return at == tokens_.end() ? text_.size() : at->begin; };
  return std::string(trimmed(std::string_view(text_).substr(place(first), place(last) - place(first))));
}

TCqlTable TCqlSelect::table() const {
  if (end - from < 2) return {};
  const TAt first = from + 1;
  if (isSymbolAt(first + 1, '.') && first + 2 < end) return {first->name(), (first + 2)->name()};
  return {{}, first->name()};
}

std::optional<std::int64_t> TCqlSelect::limit() const {
  for (TAt at = clause(tail, "limit", {}); at != end; at = clause(at + 1, "limit", {})) {
    if ((at - 1)->isWord("partition") || at + 1 == end) continue;
    const std::string_view digits = (at + 1)->text;
    std::int64_t rows = 0;
    const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), rows);
    if (error == std::errc() && stop == digits.data() + digits.size()) return rows;
  }
  return std::nullopt;
}

std::string TCqlSelect::joiner() const {
  for (TAt at = columns; at < from; ++at) {
    const bool call = isSymbolAt(at + 1, '(') && at->kind != TCqlToken::TKind::Symbol;
    if (!call) continue;
    const bool users = at - columns > 1 && isSymbolAt(at - 1, '.') && (at - 2)->name() != "system";
    if (users || !isRowFunction(at->name())) return at->name();
  }
  return {};
}

bool TCqlSelect::isCountable() const {
  return !distinct && joiner().empty() && clause(tail, "group", "by") == end &&
         clause(tail, "per", "partition") == end;
}

std::string TCqlSelect::countCql() const {
  std::string cql = "select count(*) " + between(from, tail);
  return clause(tail, "allow", "filtering") == end ? cql : cql + " allow filtering";
}

std::string TCqlSelect::withLimit(std::int64_t rows) const {
  const bool oneRow = !joiner().empty() && clause(tail, "group", "by") == end;
  if (oneRow || limit()) return text_;
  const TAt behind = clause(tail, "allow", "filtering");
  return between(tokens_.begin(), behind) + " limit " + std::to_string(rows) + " " + between(behind, end);
}

}  // namespace hollowmere

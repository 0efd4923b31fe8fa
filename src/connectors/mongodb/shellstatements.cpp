#include "connectors/mongodb/shellstatements.h"

#include <algorithm>
#include <array>

namespace hollowmere {

namespace {

constexpr std::string_view blanks = " \t\r\n";

bool isWordByte(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return (byte >= '0' && byte <= '9') || ((byte | 0x20) >= 'a' && (byte | 0x20) <= 'z') || c == '_' ||
         c == '$' || byte >= 0x80;
}

std::string_view trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string_view firstWord(std::string_view text) {
  const auto end = std::find_if_not(text.begin(), text.end(), isWordByte);
  return text.substr(0, static_cast<std::size_t>(end - text.begin()));
}

template <std::size_t Count>
bool isOneOf(std::string_view word, const std::array<std::string_view, Count>& words) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

class TSplitter {
 public:
  explicit TSplitter(std::string_view text) : text_(text) {}

  std::vector<std::string_view> split() {
    while (at_ < text_.size()) step();
    cut(text_.size());
    return std::move(pieces_);
  }

 private:
  void step() {
    const char c = text_[at_];
    if (c == '"' || c == '\'' || c == '`') return passText(c);
    if (text_.substr(at_).starts_with("//")) return passTo("\n", 0);
    if (text_.substr(at_).starts_with("/*")) return passTo("*/", 2);
    if (c == '/' && !afterOperand()) return passRegex();
    if (c == '(' || c == '[' || c == '{') ++depth_;
    if ((c == ')' || c == ']' || c == '}') && depth_ > 0) --depth_;
    if (depth_ == 0 && (c == ';' || (c == '\n' && lineEnds()))) return cut(at_++);
    if (blanks.find(c) == std::string_view::npos) last_ = at_;
    ++at_;
  }

  void passText(char quote) {
    for (++at_; at_ < text_.size() && text_[at_] != quote; ++at_)
      if (text_[at_] == '\\') ++at_;
    at_ = std::min(at_ + 1, text_.size());
    last_ = at_ - 1;
  }

  void passTo(std::string_view end, std::size_t with) {
    const std::size_t found = text_.find(end, at_ + with);
    at_ = found == std::string_view::npos ? text_.size() : found + with;
  }

  void passRegex() {
    bool inClass = false;
    for (++at_; at_ < text_.size() && text_[at_] != '\n' && (inClass || text_[at_] != '/'); ++at_) {
      if (text_[at_] == '[') inClass = true;
      if (text_[at_] == ']') inClass = false;
      if (text_[at_] == '\\') ++at_;
    }
    at_ = std::min(at_ + 1, text_.size());
    last_ = at_ - 1;
  }

  /// Whether a "/" here divides.
  [[nodiscard]] bool afterOperand() const {
    if (last_ == none || last_ < start_) return false;
    const char before = text_[last_];
    return isWordByte(before) || before == ')' || before == ']' || before == '}' || before == '"' ||
           before == '\'' || before == '`';
  }

  /// Whether the statement is complete at this line end.
  [[nodiscard]] bool lineEnds() const {
    if (last_ == none || last_ < start_) return true;
    constexpr std::string_view goOn = "=+-*/%<>&|^!~?:,.";
    if (goOn.find(text_[last_]) != std::string_view::npos &&
        !(last_ > start_ && text_[last_] == text_[last_ - 1] && (text_[last_] == '+' || text_[last_] == '-')))
      return false;
    const std::size_t next = text_.find_first_not_of(blanks, at_);
    if (next == std::string_view::npos) return true;
    const std::string_view rest = text_.substr(next);
    if (rest.starts_with("//") || rest.starts_with("/*")) return true;
    return std::string_view(".=*/%<>&|^?:,").find(rest.front()) == std::string_view::npos;
  }

  void cut(std::size_t end) {
    if (last_ != none && last_ >= start_) {
      const std::string_view piece = trim(text_.substr(start_, end - start_));
      if (!piece.empty()) pieces_.push_back(piece);
    }
    start_ = end + 1;
  }

  static constexpr std::size_t none = std::string_view::npos;
  std::string_view text_;
  std::size_t at_ = 0;
  std::size_t start_ = 0;
  std::size_t last_ = none;  ///< the last byte that counts
  int depth_ = 0;
  std::vector<std::string_view> pieces_;
};

/// Comments before a statement do not tell what it is.
std::string_view withoutComments(std::string_view text) {
  while (true) {
    text = trim(text);
    std::size_t end = 0;
    if (text.starts_with("//"))
      end = text.find('\n');
    else if (text.starts_with("/*"))
      end = text.find("*/");
    else
      return text;
    if (end == std::string_view::npos) return {};
    text.remove_prefix(std::min(text.size(), end + (text.starts_with("/*") ? 2 : 1)));
  }
}

TShellStatement classify(std::string_view text) {
  using enum TShellStatement::TKind;
  static constexpr std::array<std::string_view, 25> others{
      "var",    "let",  "const",    "function", "async",   "class",    "if",    "else",   "for",
      "while",  "do",   "switch",   "try",      "catch",   "finally",  "throw", "return", "break",
      "import", "case", "continue", "export",   "default", "debugger", "with"};
  const std::string_view plain = withoutComments(text);
  const std::string_view word = firstWord(plain);
  const std::string_view rest = trim(plain.substr(word.size()));
  const bool spaced = plain.size() > word.size() && (plain[word.size()] == ' ' || plain[word.size()] == '\t');
  if (word == "use" && spaced && !rest.empty() && rest.front() != '=') return {Use, std::string(rest)};
  if (word == "show" && spaced) {
    if (rest == "dbs" || rest == "databases") return {ShowDatabases, {}};
    if (rest == "collections" || rest == "tables") return {ShowCollections, {}};
    if (rest == "users") return {ShowUsers, {}};
    if (rest == "roles") return {ShowRoles, {}};
  }
  if ((word == "exit" || word == "quit") && rest.empty()) return {Exit, {}};
  if (isOneOf(word, others) || plain.starts_with('{')) return {Other, std::string(text)};
  return {Expression, std::string(plain)};
}

}  // namespace

std::vector<TShellStatement> splitStatements(std::string_view text) {
  std::vector<TShellStatement> statements;
  for (const std::string_view piece : TSplitter(text).split())
    if (!withoutComments(piece).empty()) statements.push_back(classify(piece));
  return statements;
}

}  // namespace hollowmere

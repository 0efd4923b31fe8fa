#include "connectors/hbase/hbasefiltertext.h"

#include <algorithm>
#include <array>

#include "json/value.h"

namespace hollowmere {

namespace {

constexpr std::array<std::string_view, 6> comparisons{"<", "<=", "=", "!=", ">", ">="};
constexpr std::array<std::string_view, 4> comparators{"binary", "binaryprefix", "regexstring", "substring"};
constexpr std::array<std::string_view, 19> filterNames{"KeyOnlyFilter",
                                                       "FirstKeyOnlyFilter",
                                                       "PrefixFilter",
                                                       "ColumnPrefixFilter",
                                                       "MultipleColumnPrefixFilter",
                                                       "ColumnCountGetFilter",
                                                       "PageFilter",
                                                       "ColumnPaginationFilter",
                                                       "InclusiveStopFilter",
                                                       "TimestampsFilter",
                                                       "RowFilter",
                                                       "FamilyFilter",
                                                       "QualifierFilter",
                                                       "ValueFilter",
                                                       "DependentColumnFilter",
                                                       "ColumnRangeFilter",
                                                       "SingleColumnValueFilter",
                                                       "SingleColumnValueExcludeFilter",
                                                       "ColumnValueFilter"};

template <class TList>
bool isOneOf(const TList& list, std::string_view text) {
  return std::find(list.begin(), list.end(), text) != list.end();
}

bool isWordSign(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '$' ||
         c == '.';
}

bool isNumber(std::string_view text) {
  if (text.starts_with('-')) text.remove_prefix(1);
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

constexpr int deepest = 200;

/// Counts how deep expressions stand in each other.
class TDepth {
 public:
  explicit TDepth(int& depth) : depth_(depth) { ++depth_; }
  TDepth(const TDepth&) = delete;
  TDepth& operator=(const TDepth&) = delete;
  ~TDepth() { --depth_; }

 private:
  int& depth_;
};

class TFilterParser {
 public:
  explicit TFilterParser(std::string_view text) : text_(text) {}

  THBaseFilter all() {
    THBaseFilter filter = alternatives();
    if (at_ < text_.size()) failOperator();
    return filter;
  }

 private:
  [[noreturn]] void fail(const std::string& what, std::size_t at) const {
    throw THBaseFilterError(what + " at character " + std::to_string(at + 1) + ".");
  }

  /// What stands here in the place of AND or OR.
  [[noreturn]] void failOperator() const {
    if (text_[at_] == ')') fail("There is a \")\" without its \"(\"", at_);
    fail("\"" + wordHere() + "\" is not an operator (AND, OR)", at_);
  }

  void passBlanks() {
    while (at_ < text_.size() && text_[at_] == ' ') ++at_;
    if (at_ < text_.size() && text_[at_] == '\t') fail("There is a tab, use a blank", at_);
  }

  /// A word, or else the one sign, for messages.
  [[nodiscard]] std::string wordHere() const {
    std::size_t end = at_;
    while (end < text_.size() && isWordSign(text_[end])) ++end;
    if (end == at_ && end < text_.size())
      while (end < text_.size() && !isWordSign(text_[end]) &&
             std::string_view(" ()',").find(text_[end]) == std::string_view::npos)
        ++end;
    return std::string(text_.substr(at_, std::max<std::size_t>(end - at_, 1)));
  }

  /// Whether that operator stands here, set off from what follows; passes it.
  bool passOperator(std::string_view word) {
    passBlanks();
    if (!text_.substr(at_).starts_with(word)) return false;
    const std::size_t end = at_ + word.size();
    if (end < text_.size() && isWordSign(text_[end])) return false;
    if (end == text_.size() || (text_[end] != ' ' && text_[end] != '('))
      fail("The operator " + std::string(word) + " needs a blank or \"(\" behind it", end);
    at_ = end;
    return true;
  }

  THBaseFilter joined(TFilterKind kind, std::string_view word, THBaseFilter (TFilterParser::*part)()) {
    THBaseFilter first = (this->*part)();
    if (!passOperator(word)) return first;
    THBaseFilter filter;
    filter.kind = kind;
    filter.parts.push_back(std::move(first));
    do filter.parts.push_back((this->*part)());
    while (passOperator(word));
    return filter;
  }

  THBaseFilter alternatives() { return joined(TFilterKind::Or, "OR", &TFilterParser::conjunction); }
  THBaseFilter conjunction() { return joined(TFilterKind::And, "AND", &TFilterParser::unary); }

  THBaseFilter unary() {
    const TDepth depth(depth_);
    if (depth_ > deepest) fail("The filter stands too deep in others", at_);
    for (const auto& [kind, word] :
         {std::pair(TFilterKind::Skip, "SKIP"), std::pair(TFilterKind::While, "WHILE")})
      if (passOperator(word)) {
        THBaseFilter filter;
        filter.kind = kind;
        filter.parts.push_back(unary());
        return filter;
      }
    passBlanks();
    if (at_ < text_.size() && text_[at_] == '(') {
      const std::size_t opened = at_++;
      THBaseFilter filter = alternatives();
      passBlanks();
      if (at_ == text_.size()) fail("There is a \"(\" without its \")\"", opened);
      if (text_[at_] != ')') failOperator();
      ++at_;
      return filter;
    }
    return simple();
  }

  THBaseFilter simple() {
    const std::size_t begin = at_;
    if (at_ == text_.size()) fail("A filter is missing", at_);
    while (at_ < text_.size() && isWordSign(text_[at_])) ++at_;
    THBaseFilter filter;
    filter.name = text_.substr(begin, at_ - begin);
    passBlanks();
    if (filter.name.empty()) fail("\"" + wordHere() + "\" stands where a filter should begin", begin);
    if (at_ == text_.size() || text_[at_] != '(') {
      const bool known = isOneOf(filterNames, filter.name);
      fail(known ? "\"" + filter.name + "\" has no arguments in parentheses"
                 : "\"" + filter.name + "\" is neither a filter nor an operator (AND, OR, SKIP, WHILE)",
           begin);
    }
    ++at_;
    readArguments(filter);
    return filter;
  }

  void readArguments(THBaseFilter& filter) {
    passBlanks();
    if (at_ < text_.size() && text_[at_] == ')') {
      ++at_;
      return;
    }
    for (;;) {
      passBlanks();
      readArgument(filter);
      passBlanks();
      if (at_ == text_.size()) fail("The arguments of " + filter.name + " have no \")\"", at_);
      const char sign = text_[at_++];
      if (sign == ')') return;
      if (sign != ',') fail("There is \"" + std::string(1, sign) + "\" where a comma should be", at_ - 1);
    }
  }

  void readArgument(THBaseFilter& filter) {
    const std::size_t begin = at_;
    if (at_ < text_.size() && text_[at_] == '\'')
      filter.arguments.push_back({quotedText(), true});
    else
      filter.arguments.push_back({bareWord(filter.name), false});
    const std::size_t count = filter.arguments.size();
    if (count > 1 && isOneOf(comparisons, filter.arguments[count - 2].text) &&
        !filter.arguments[count - 2].quoted)
      checkComparator(filter.arguments[count - 2].text, filter.arguments[count - 1], begin);
  }

  std::string quotedText() {
    const std::size_t opened = at_++;
    std::string text;
    for (; at_ < text_.size(); ++at_) {
      if (text_[at_] != '\'') {
        text += text_[at_];
      } else if (at_ + 1 < text_.size() && text_[at_ + 1] == '\'') {
        text += text_[at_++];
      } else {
        ++at_;
        return text;
      }
    }
    fail("The text that begins with a ' does not end", opened);
  }

  std::string bareWord(const std::string& filter) {
    const std::size_t begin = at_;
    while (at_ < text_.size() && std::string_view(" ,)'\t").find(text_[at_]) == std::string_view::npos) ++at_;
    std::string word(text_.substr(begin, at_ - begin));
    const bool good = isOneOf(comparisons, word) || isNumber(word) || equalIgnoringCase(word, "true") ||
                      equalIgnoringCase(word, "false");
    if (good) return word;
    if (word.empty()) fail("An argument of " + filter + " is missing", begin);
    fail("\"" + word +
             "\" is neither a comparison (<, <=, =, !=, >, >=), a number, true or false, nor a text in '",
         begin);
  }

  /// What follows a comparison says how to compare.
  void checkComparator(const std::string& comparison, const THBaseFilterArgument& argument,
                       std::size_t at) const {
    const std::string type = argument.text.substr(0, argument.text.find(':'));
    if (!argument.quoted || type.size() == argument.text.size() || !isOneOf(comparators, type))
      fail(
          "What is compared with must be a text such as 'binary:value' (binary, binaryprefix, regexstring, "
          "substring)",
          at);
    if ((type == "regexstring" || type == "substring") && comparison != "=" && comparison != "!=")
      fail("\"" + comparison + "\" cannot compare with " + type + " (only = and != can)", at);
  }

  std::string_view text_;
  std::size_t at_ = 0;
  int depth_ = 0;
};

/// The first key behind all that begin so; empty when there is none.
std::string behindPrefix(std::string prefix) {
  while (!prefix.empty() && prefix.back() == '\xFF') prefix.pop_back();
  if (!prefix.empty()) prefix.back() = static_cast<char>(prefix.back() + 1);
  return prefix;
}

THBaseKeyLimits simpleLimits(const THBaseFilter& filter) {
  if (filter.name == "PrefixFilter" && filter.arguments.size() == 1 && filter.arguments[0].quoted)
    return {filter.arguments[0].text, behindPrefix(filter.arguments[0].text)};
  constexpr std::string_view exact = "binary:", beginning = "binaryprefix:";
  if (filter.name != "RowFilter" || filter.arguments.size() != 2 || filter.arguments[0].text != "=")
    return {};
  const std::string& text = filter.arguments[1].text;
  if (text.starts_with(exact) && text.size() > exact.size()) {
    const std::string key = text.substr(exact.size());
    return {key, key + '\0'};
  }
  if (text.starts_with(beginning)) {
    const std::string prefix = text.substr(beginning.size());
    return {prefix, behindPrefix(prefix)};
  }
  return {};
}

}  // namespace

THBaseFilter parseHBaseFilter(std::string_view text) { return TFilterParser(text).all(); }

std::string unknownFilterName(const THBaseFilter& filter) {
  if (filter.kind == TFilterKind::Simple)
    return isOneOf(filterNames, filter.name) ? std::string() : filter.name;
  for (const THBaseFilter& part : filter.parts)
    if (std::string name = unknownFilterName(part); !name.empty()) return name;
  return {};
}

bool holdsFilter(const THBaseFilter& filter, std::string_view name) {
  return filter.name == name || std::any_of(filter.parts.begin(), filter.parts.end(),
                                            [name](const auto& part) { return holdsFilter(part, name); });
}

THBaseKeyLimits keyLimits(const THBaseFilter& filter) {
  if (filter.kind == TFilterKind::Simple) return simpleLimits(filter);
  if (filter.kind != TFilterKind::And) return {};
  THBaseKeyLimits limits;
  for (const THBaseFilter& part : filter.parts) {
    const THBaseKeyLimits more = keyLimits(part);
    limits.from = std::max(limits.from, more.from);
    if (limits.before.empty() || (!more.before.empty() && more.before < limits.before))
      limits.before = more.before;
  }
  return limits;
}

}  // namespace hollowmere

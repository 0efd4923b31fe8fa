#include "connectors/hbase/hbasefiltertext.h"

#include <algorithm>
#include <array>

#include "connectors/hbase/hbasekeys.h"
#include "json/value.h"

namespace hollowmere {

namespace {

constexpr std::array<std::string_view, 6> comparisons{"<", "<=", "=", "!=", ">", ">="};
constexpr std::array<std::string_view, 4> comparators{"binary", "binaryprefix", "regexstring", "substring"};
/// A filter that HBase brings along, and what it takes: t a text, n a number from 0, b true or false,
/// o a comparison, c what is compared with. Several forms stand between |; + repeats the one before.
struct TKnownFilter {
  std::string_view name;
  std::string_view forms;
};

constexpr std::array<TKnownFilter, 19> knownFilters{{{"KeyOnlyFilter", "|b"},
                                                     {"FirstKeyOnlyFilter", ""},
                                                     {"PrefixFilter", "t"},
                                                     {"ColumnPrefixFilter", "t"},
                                                     {"MultipleColumnPrefixFilter", "t+"},
                                                     {"ColumnCountGetFilter", "n"},
                                                     {"PageFilter", "n"},
                                                     {"ColumnPaginationFilter", "nn"},
                                                     {"InclusiveStopFilter", "t"},
                                                     {"TimestampsFilter", "n+"},
                                                     {"RowFilter", "oc"},
                                                     {"FamilyFilter", "oc"},
                                                     {"QualifierFilter", "oc"},
                                                     {"ValueFilter", "oc"},
                                                     {"DependentColumnFilter", "tt|ttb|ttboc"},
                                                     {"ColumnRangeFilter", "tbtb"},
                                                     {"SingleColumnValueFilter", "ttoc|ttocbb"},
                                                     {"SingleColumnValueExcludeFilter", "ttoc|ttocbb"},
                                                     {"ColumnValueFilter", "ttoc"}}};

const TKnownFilter* knownFilter(std::string_view name) {
  const auto found = std::find_if(knownFilters.begin(), knownFilters.end(),
                                  [name](const TKnownFilter& known) { return known.name == name; });
  return found == knownFilters.end() ? nullptr : found;
}

std::vector<std::string_view> formsOf(const TKnownFilter& known) {
  std::vector<std::string_view> forms;
  std::string_view rest = known.forms;
  for (std::size_t end; (end = rest.find('|')) != std::string_view::npos; rest.remove_prefix(end + 1))
    forms.push_back(rest.substr(0, end));
  forms.push_back(rest);
  return forms;
}

bool repeats(std::string_view form) { return form.ends_with('+'); }

/// The form's letter for an argument; none: 0.
char letterAt(std::string_view form, std::size_t index) {
  if (repeats(form)) return form.front();
  return index < form.size() ? form[index] : '\0';
}

/// "4", "2, 3 or 5", "1 or more"
std::string countsText(const TKnownFilter& known) {
  const auto forms = formsOf(known);
  if (repeats(forms.front())) return "1 or more";
  std::string text;
  for (std::size_t i = 0; i < forms.size(); ++i)
    text += (i == 0 ? "" : i + 1 == forms.size() ? " or " : ", ") + std::to_string(forms[i].size());
  return text;
}

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

bool isTruth(std::string_view text) {
  return equalIgnoringCase(text, "true") || equalIgnoringCase(text, "false");
}

bool hasKind(const THBaseFilterArgument& argument, char letter) {
  if (argument.parameter) return letter != 'o';
  switch (letter) {
    case 'n': return !argument.quoted && isNumber(argument.text) && argument.text.front() != '-';
    case 'b': return !argument.quoted && isTruth(argument.text);
    case 'o': return !argument.quoted && isOneOf(comparisons, argument.text);
    default: return argument.quoted;
  }
}

const char* kindText(char letter) {
  switch (letter) {
    case 'n': return "a number from 0";
    case 'b': return "true or false";
    case 'o': return "a comparison (<, <=, =, !=, >, >=)";
    default: return "a text in '";
  }
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
  TFilterParser(std::string_view text, bool parameters) : text_(text), parameters_(parameters) {}

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
      const bool known = knownFilter(filter.name) != nullptr;
      fail(known ? "\"" + filter.name + "\" has no arguments in parentheses"
                 : "\"" + filter.name + "\" is neither a filter nor an operator (AND, OR, SKIP, WHILE)",
           begin);
    }
    ++at_;
    readArguments(filter);
    checkArguments(filter, begin);
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
      filter.arguments.push_back({quotedText(), begin, true});
    else if (parameters_ && at_ < text_.size() && text_[at_] == ':')
      filter.arguments.push_back({parameterName(), begin, false, true});
    else
      filter.arguments.push_back({bareWord(filter.name), begin});
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

  /// With its colon.
  std::string parameterName() {
    const std::size_t end = parameterEnd(text_, at_);
    if (end == at_) fail("A parameter's name is missing", at_);
    std::string name(text_.substr(at_, end - at_));
    at_ = end;
    return name;
  }

  /// What a server refuses without a reason. Filters of a server's own may take anything.
  void checkArguments(const THBaseFilter& filter, std::size_t begin) const {
    const TKnownFilter* known = knownFilter(filter.name);
    if (!known) return;
    const std::size_t count = filter.arguments.size();
    const auto forms = formsOf(*known);
    const auto form = std::find_if(forms.begin(), forms.end(), [count](std::string_view one) {
      return repeats(one) ? count > 0 : one.size() == count;
    });
    if (form == forms.end())
      fail(filter.name + " has " + std::to_string(count) + " arguments instead of " + countsText(*known),
           begin);
    for (std::size_t i = 0; i < count; ++i) {
      const THBaseFilterArgument& argument = filter.arguments[i];
      const char letter = letterAt(*form, i);
      if (!hasKind(argument, letter))
        fail("Argument " + std::to_string(i + 1) + " of " + filter.name + " is not " + kindText(letter),
             argument.at);
    }
  }

  std::string bareWord(const std::string& filter) {
    const std::size_t begin = at_;
    while (at_ < text_.size() && std::string_view(" ,)'\t").find(text_[at_]) == std::string_view::npos) ++at_;
    std::string word(text_.substr(begin, at_ - begin));
    const bool good = isOneOf(comparisons, word) || isNumber(word) || isTruth(word);
    if (good) return word;
    if (word.empty()) fail("An argument of " + filter + " is missing", begin);
    fail("\"" + word +
             "\" is neither a comparison (<, <=, =, !=, >, >=), a number, true or false, nor a text in '",
         begin);
  }

  /// What follows a comparison says how to compare.
  void checkComparator(const std::string& comparison, const THBaseFilterArgument& argument,
                       std::size_t at) const {
    if (argument.parameter) return;
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
  bool parameters_;
  std::size_t at_ = 0;
  int depth_ = 0;
};

bool startsName(char c) { return c == '_' || c == '$' || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool continuesName(char c) { return startsName(c) || c == '.' || c == '#' || (c >= '0' && c <= '9'); }

THBaseKeyLimits simpleLimits(const THBaseFilter& filter) {
  if (filter.name == "PrefixFilter" && filter.arguments.size() == 1 && filter.arguments[0].quoted)
    return {filter.arguments[0].text, keyBehindPrefix(filter.arguments[0].text)};
  constexpr std::string_view exact = "binary:", beginning = "binaryprefix:";
  if (filter.name != "RowFilter" || filter.arguments.size() != 2 || filter.arguments[0].text != "=")
    return {};
  const std::string& text = filter.arguments[1].text;
  if (text.starts_with(exact)) {
    const std::string key = text.substr(exact.size());
    // No row has the empty key, and no row is asked for.
    return {key.empty() ? keyBehind(key) : key, keyBehind(key)};
  }
  if (text.starts_with(beginning)) {
    const std::string prefix = text.substr(beginning.size());
    return {prefix, keyBehindPrefix(prefix)};
  }
  return {};
}

}  // namespace

THBaseFilter parseHBaseFilter(std::string_view text, TFilterParameters parameters) {
  return TFilterParser(text, parameters == TFilterParameters::Allowed).all();
}

std::size_t parameterEnd(std::string_view text, std::size_t colon) {
  std::size_t at = colon + 1;
  if (at < text.size() && text[at] == '"') {
    const std::size_t close = text.find('"', at + 1);
    return close == std::string_view::npos ? colon : close + 1;
  }
  if (at >= text.size() || !startsName(text[at])) return colon;
  while (at < text.size() && (continuesName(text[at]) ||
                              (text[at] == ':' && at + 1 < text.size() && continuesName(text[at + 1]))))
    ++at;
  return at;
}

std::string unknownFilterName(const THBaseFilter& filter) {
  if (filter.kind == TFilterKind::Simple) return knownFilter(filter.name) ? std::string() : filter.name;
  for (const THBaseFilter& part : filter.parts)
    if (std::string name = unknownFilterName(part); !name.empty()) return name;
  return {};
}

bool takesBare(std::string_view filter, std::size_t index, std::string_view value) {
  const TKnownFilter* known = knownFilter(filter);
  const char letter = known ? letterAt(formsOf(*known).back(), index) : '\0';
  return (letter == 'n' && isNumber(value)) || (letter == 'b' && isTruth(value));
}

bool judgesRowsAlone(const THBaseFilter& filter, TPages pages) {
  if (filter.kind == TFilterKind::While) return false;
  if (filter.kind == TFilterKind::Simple)
    return knownFilter(filter.name) && filter.name != "ColumnCountGetFilter" &&
           (pages == TPages::Allowed || filter.name != "PageFilter");
  return std::all_of(filter.parts.begin(), filter.parts.end(),
                     [pages](const THBaseFilter& part) { return judgesRowsAlone(part, pages); });
}

namespace {

THBaseKeyLimits limitsWithin(const THBaseFilter& filter) {
  if (filter.kind == TFilterKind::Simple) return simpleLimits(filter);
  if (filter.kind != TFilterKind::And) return {};
  THBaseKeyLimits limits;
  for (const THBaseFilter& part : filter.parts) {
    const THBaseKeyLimits more = limitsWithin(part);
    limits.from = std::max(limits.from, more.from);
    if (limits.before.empty() || (!more.before.empty() && more.before < limits.before))
      limits.before = more.before;
  }
  return limits;
}

}  // namespace

/// Rows that a PageFilter does not let it count are those that the key keeps out anyway.
THBaseKeyLimits keyLimits(const THBaseFilter& filter) {
  return judgesRowsAlone(filter, TPages::Allowed) ? limitsWithin(filter) : THBaseKeyLimits();
}

}  // namespace hollowmere

#include "sqlmongo/conditionparser.h"

#include <array>
#include <utility>

#include "sqlmongo/shelltext.h"
#include "sqlmongo/sqlcheck.h"
#include "sqlmongo/sqltexts.h"

namespace hollowmere {

namespace {

using TTokens = std::vector<TSqlToken>;

TSqlFunction functionOf(const TSqlToken& token) {
  static constexpr std::array<std::pair<std::string_view, TSqlFunction>, 5> names{
      {{"count", TSqlFunction::Count},
       {"sum", TSqlFunction::Sum},
       {"avg", TSqlFunction::Avg},
       {"min", TSqlFunction::Min},
       {"max", TSqlFunction::Max}}};
  for (const auto& [name, function] : names)
    if (token.isWord(name)) return function;
  return TSqlFunction::None;
}

void parseArgument(const TTokens& tokens, TSqlRange range, TSqlColumn& column) {
  if (range.size() > 1 && tokens[range.begin].isWord("distinct")) {
    column.distinctCall = true;
    ++range.begin;
  }
  column.goodCall = false;
  if (range.empty()) return;
  column.all = range.size() == 1 && tokens[range.begin].isSymbol("*");
  const auto end = parseName(tokens, range, column.name);
  column.goodCall = end == range.end || (column.all && column.function == TSqlFunction::Count);
  // COUNT counts whatever its argument is; what this one says does not matter.
  if (!end && column.function == TSqlFunction::Count) column.name.text = "*";
}

class TConditionParser {
 public:
  TConditionParser(const TTokens& tokens, TSqlRange range)
      : tokens_(tokens), at_(range.begin), end_(range.end) {}

  TSqlLevel run() {
    TSqlLevel level = parseLevel(0);
    if (at_ != end_) refuse("this does not belong to the condition");
    return level;
  }

 private:
  // Filters may not stand deeper in each other on a server either.
  static constexpr int deepest = 90;

  [[noreturn]] void refuse(const std::string& why) const {
    throw TSqlFault(sqltexts::badWhere, at_ < end_ ? tokens_[at_].begin : tokens_[end_ - 1].end, why);
  }
  [[nodiscard]] const TSqlToken* peek() const { return at_ < end_ ? &tokens_[at_] : nullptr; }
  bool takeWord(std::string_view word) {
    const bool here = peek() && peek()->isWord(word);
    if (here) ++at_;
    return here;
  }
  bool takeSymbol(std::string_view symbol) {
    const bool here = peek() && peek()->isSymbol(symbol);
    if (here) ++at_;
    return here;
  }
  void needSymbol(std::string_view symbol) {
    if (!takeSymbol(symbol)) refuse("\"" + std::string(symbol) + "\" is missing here");
  }

  TSqlLevel parseLevel(int depth) {
    if (depth > deepest) refuse("conditions stand too deep in each other");
    TSqlLevel level;
    for (;;) {
      level.operands.push_back(parseOperand(depth));
      const bool isAnd = takeWord("and");
      if (!isAnd && !takeWord("or")) return level;
      level.ands.push_back(isAnd);
    }
  }

  TSqlOperand parseOperand(int depth) {
    TSqlOperand operand;
    operand.place = peek() ? peek()->begin : 0;
    while (takeWord("not")) {
      operand.hasNot = true;
      operand.negated = !operand.negated;
    }
    if (takeSymbol("(")) {
      operand.group = std::make_unique<TSqlLevel>(parseLevel(depth + 1));
      needSymbol(")");
    } else {
      operand.condition = parseComparison();
    }
    return operand;
  }

  TSqlCondition parseComparison() {
    TSqlCondition condition;
    condition.column = parseColumn();
    const bool negated = takeWord("not");
    if (takeWord("in")) {
      condition.op = negated ? TSqlOperator::NotIn : TSqlOperator::In;
      parseList(condition.values);
    } else if (takeWord("like")) {
      condition.op = negated ? TSqlOperator::NotLike : TSqlOperator::Like;
      condition.values.push_back(parseValue());
    } else if (takeWord("between")) {
      condition.op = negated ? TSqlOperator::NotBetween : TSqlOperator::Between;
      condition.values.push_back(parseValue());
      if (!takeWord("and")) refuse("the AND of BETWEEN is missing here");
      condition.values.push_back(parseValue());
    } else if (!negated && takeWord("is")) {
      condition.op = takeWord("not") ? TSqlOperator::IsNotNull : TSqlOperator::IsNull;
      if (!takeWord("null")) refuse("behind IS only NULL and NOT NULL can be translated");
    } else {
      if (negated) refuse("IN, LIKE or BETWEEN is missing behind NOT");
      condition.op = parseOperator();
      condition.values.push_back(parseValue());
    }
    return condition;
  }

  TSqlColumn parseColumn() {
    TSqlColumn column;
    column.place = peek() ? peek()->begin : 0;
    const TSqlRange rest{at_, end_};
    if (const auto call = parseCall(tokens_, rest, column)) {
      if (!column.goodCall) refuse("the argument of a function must be one column");
      at_ = *call;
    } else if (const auto name = parseName(tokens_, rest, column.name)) {
      at_ = *name;
    } else {
      refuse("a column is missing here");
    }
    if (peek() && peek()->isSymbol("(")) refuse("a function's value cannot be compared");
    return column;
  }

  TSqlOperator parseOperator() {
    static constexpr std::array<std::pair<std::string_view, TSqlOperator>, 6> table{
        {{"=", TSqlOperator::Equal},
         {"<>", TSqlOperator::NotEqual},
         {"<", TSqlOperator::Less},
         {">=", TSqlOperator::GreaterOrEqual},
         {">", TSqlOperator::Greater},
         {"<=", TSqlOperator::LessOrEqual}}};
    for (const auto& [symbol, op] : table)
      if (takeSymbol(symbol)) return op;
    refuse("a comparison is missing here");
  }

  TSqlValue parseValue() {
    const TSqlToken* token = peek();
    if (!token || token->kind == TSqlTokenKind::Symbol) refuse("a value is missing here");
    ++at_;
    if (token->kind != TSqlTokenKind::Word) return {TSqlValue::Text, token->content(), token->begin};
    if (const auto number = numberText(*token)) return {TSqlValue::Number, *number, token->begin};
    if (token->isWord("null")) return {TSqlValue::Null, {}, token->begin};
    return {TSqlValue::Word, std::string(token->text), token->begin};
  }

  void parseList(std::vector<TSqlValue>& values) {
    needSymbol("(");
    do values.push_back(parseValue());
    while (takeSymbol(","));
    needSymbol(")");
  }

  const TTokens& tokens_;
  std::size_t at_;
  std::size_t end_;
};

}  // namespace

TSqlLevel parseCondition(const std::vector<TSqlToken>& tokens, TSqlRange range) {
  if (const auto fault = checkCondition(tokens, range))
    throw TSqlFault(sqltexts::badWhere, fault->place, fault->message);
  return TConditionParser(tokens, range).run();
}

std::optional<std::size_t> parseCall(const std::vector<TSqlToken>& tokens, TSqlRange range,
                                     TSqlColumn& column) {
  if (range.size() < 2 || !tokens[range.begin + 1].isSymbol("(")) return std::nullopt;
  const TSqlFunction function = functionOf(tokens[range.begin]);
  if (function == TSqlFunction::None) return std::nullopt;
  column.function = function;
  column.place = tokens[range.begin].begin;
  std::size_t close = range.begin + 2;
  while (close < range.end && !tokens[close].isSymbol(")")) ++close;
  column.goodCall = false;
  if (close == range.end) return close;
  parseArgument(tokens, {range.begin + 2, close}, column);
  return close + 1;
}

std::optional<std::size_t> parseName(const std::vector<TSqlToken>& tokens, TSqlRange range, TSqlName& name) {
  std::size_t at = range.begin;
  if (at == range.end || !tokens[at].isName()) return std::nullopt;
  name = {{}, false, tokens[at].begin};
  do {
    name.text += tokens[at].content();
    name.quoted = name.quoted || tokens[at].kind == TSqlTokenKind::Name;
  } while (++at < range.end && tokens[at].isName() && tokens[at].begin == tokens[at - 1].end);
  return at;
}

}  // namespace hollowmere

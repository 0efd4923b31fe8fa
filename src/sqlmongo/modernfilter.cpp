#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>

#include "json/value.h"
#include "sqlmongo/modernshell.h"
#include "sqlmongo/shelltext.h"
#include "sqlmongo/sqltexts.h"

namespace hollowmere {

namespace {

[[noreturn]] void refuse(std::size_t place, const std::string& reason) {
  throw TSqlFault(sqltexts::badWhere, place, reason);
}

/// A double holds integers up to 2^53 without loss; the shell's plain numbers are doubles.
std::string integerText(const TSqlValue& value) {
  std::int64_t number = 0;
  const auto [end, fault] = std::from_chars(value.text.data(), value.text.data() + value.text.size(), number);
  constexpr std::int64_t exact = std::int64_t{1} << 53;
  if (fault == std::errc()) {
    const bool plain = number >= -exact && number <= exact;
    return plain ? value.text : "NumberLong(" + quotedText(value.text) + ")";
  }
  if (value.text.size() > 34) refuse(value.place, "the number has more digits than a server can hold");
  return "NumberDecimal(" + quotedText(value.text) + ")";
}

/// A filter: members of which all must hold.
using TTerms = std::vector<std::pair<std::string, std::string>>;

std::string termsText(const TTerms& terms) {
  std::string out;
  for (const auto& [key, body] : terms)
    out.append(out.empty() ? "" : ",").append(quotedText(key)).append(":").append(body);
  return "{" + out + "}";
}

bool keysDiffer(const TTerms& terms) {
  std::vector<std::string_view> keys;
  for (const auto& term : terms) keys.push_back(term.first);
  std::sort(keys.begin(), keys.end());
  return std::adjacent_find(keys.begin(), keys.end()) == keys.end();
}

/// One filter of several: all of them must hold, or any.
TTerms joined(const std::vector<TTerms>& filters, bool all) {
  if (filters.size() == 1) return filters.front();
  TTerms together;
  for (const TTerms& filter : filters) together.insert(together.end(), filter.begin(), filter.end());
  if (all && keysDiffer(together)) return together;
  std::string list;
  for (const TTerms& filter : filters) list.append(list.empty() ? "" : ",").append(termsText(filter));
  return {{all ? "$and" : "$or", "[" + list + "]"}};
}

/// What LIKE means: the whole text, "%" any characters, "_" one. The end is looked at twice because "$" also
/// stands before a line end that is the last character.
std::string likeRegex(std::string_view pattern) {
  const bool openEnd = pattern.ends_with('%');
  const bool openStart = pattern.starts_with('%');
  while (pattern.starts_with('%')) pattern.remove_prefix(1);
  while (pattern.ends_with('%')) pattern.remove_suffix(1);
  std::string out = openStart ? "/" : "/^";
  for (const char c : pattern) {
    if (c == '%')
      out += "[\\s\\S]*";
    else if (c == '_')
      out += "[\\s\\S]";
    else
      appendRegexCharacter(out, c, "/\\()[]{}*+?.^$|");
  }
  if (!openEnd) out += "(?!\\n)$";
  return (out == "/" ? "/^" : out) + "/";
}

bool hasWildcard(const TSqlValue& value) { return value.text.find_first_of("%_") != std::string::npos; }

TSqlOperator opposite(TSqlOperator op) { return static_cast<TSqlOperator>(static_cast<int>(op) ^ 1); }

class TFilterPrinter {
 public:
  explicit TFilterPrinter(const TFieldOf& fieldOf) : fieldOf_(fieldOf) {}

  /// NOT turns each condition into its opposite and AND into OR, so that nulls stay out of both.
  TTerms level(const TSqlLevel& level, bool negated) const {
    std::vector<TTerms> alternatives, run;
    for (std::size_t i = 0; i < level.operands.size(); ++i) {
      run.push_back(operand(level.operands[i], negated));
      if (i < level.ands.size() && level.ands[i]) continue;
      alternatives.push_back(joined(run, !negated));
      run.clear();
    }
    return joined(alternatives, negated);
  }

 private:
  [[nodiscard]] TTerms operand(const TSqlOperand& operand, bool negated) const {
    const bool opposed = operand.negated != negated;
    return operand.group ? level(*operand.group, opposed) : condition(operand.condition, opposed);
  }

  [[nodiscard]] TTerms condition(const TSqlCondition& condition, bool negated) const {
    const TSqlOperator op = negated ? opposite(condition.op) : condition.op;
    const std::string field = fieldOf_(condition.column);
    const std::string& column = condition.column.name.text;
    const auto& values = condition.values;
    switch (op) {
      case TSqlOperator::IsNull: return {{field, "null"}};
      case TSqlOperator::IsNotNull: return {{field, one("$ne", "null")}};
      case TSqlOperator::In: return {{field, one("$in", list(values, column, false))}};
      case TSqlOperator::NotIn: return {{field, one("$nin", list(values, column, true))}};
      case TSqlOperator::Like:
      case TSqlOperator::NotLike: return {{field, like(values[0], column, op == TSqlOperator::Like)}};
      case TSqlOperator::Between:
        return {{field, "{\"$gte\":" + ordered(values[0], column) +
                            ",\"$lte\":" + ordered(values[1], column) + "}"}};
      case TSqlOperator::NotBetween:
        return joined({TTerms{{field, one("$lt", ordered(values[0], column))}},
                       TTerms{{field, one("$gt", ordered(values[1], column))}}},
                      false);
      default: return {{field, compared(op, values[0], column)}};
    }
  }

  [[nodiscard]] static std::string compared(TSqlOperator op, const TSqlValue& value,
                                            const std::string& column) {
    if (op == TSqlOperator::Equal) return modernValue(value, column);
    if (op == TSqlOperator::NotEqual)
      return value.kind == TSqlValue::Null ? one("$ne", "null") : one("$nin", list({value}, column, true));
    const char* name = op == TSqlOperator::Less             ? "$lt"
                       : op == TSqlOperator::GreaterOrEqual ? "$gte"
                       : op == TSqlOperator::Greater        ? "$gt"
                                                            : "$lte";
    return one(name, ordered(value, column));
  }

  [[nodiscard]] static std::string one(const char* name, const std::string& operand) {
    return "{" + quotedText(name) + ":" + operand + "}";
  }

  [[nodiscard]] static std::string ordered(const TSqlValue& value, const std::string& column) {
    if (value.kind == TSqlValue::Null)
      refuse(value.place, "nothing is less or greater than NULL; IS NULL asks for it");
    return modernValue(value, column);
  }

  [[nodiscard]] static std::string list(const std::vector<TSqlValue>& values, const std::string& column,
                                        bool andNull) {
    std::string out;
    for (const TSqlValue& value : values) {
      if (value.kind == TSqlValue::Null)
        refuse(value.place, "NULL in a list matches nothing; IS NULL asks for it");
      out.append(out.empty() ? "" : ",").append(modernValue(value, column));
    }
    return "[" + out + (andNull ? ",null]" : "]");
  }

  [[nodiscard]] static std::string like(const TSqlValue& value, const std::string& column, bool positive) {
    if (value.kind != TSqlValue::Text) refuse(value.place, "LIKE takes a quoted text");
    if (!hasWildcard(value))
      return positive ? quotedText(value.text) : one("$nin", list({value}, column, true));
    const std::string regex = likeRegex(value.text);
    return positive ? regex : "{\"$not\":" + regex + ",\"$ne\":null}";
  }

  const TFieldOf& fieldOf_;
};

}  // namespace

std::string fieldName(const TSqlName& name) {
  const auto plain = [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || (c & 0x80) || c == '_' || c == '.' || c == '$';
  };
  if (name.text.empty() || name.text.starts_with('$'))
    refuse(name.place, "a field's name may not begin with \"$\"");
  if (name.quoted) return name.text;
  if (!std::all_of(name.text.begin(), name.text.end(), plain))
    refuse(name.place, name.text + " is an expression; if it is a field's name, put it in double quotes");
  if (std::isdigit(static_cast<unsigned char>(name.text.front())))
    refuse(name.place, name.text + " is a number; if it is a field's name, put it in double quotes");
  return name.text;
}

std::string plainField(const TSqlColumn& column) {
  if (column.function != TSqlFunction::None)
    refuse(column.place, "an aggregate can stand in SELECT, HAVING and ORDER BY only");
  return fieldName(column.name);
}

std::string modernValue(const TSqlValue& value, const std::string& column) {
  switch (value.kind) {
    case TSqlValue::Number:
      return value.text.find_first_of(".eE") == std::string::npos ? integerText(value) : value.text;
    case TSqlValue::Text:
      return equalIgnoringCase(column, "_id") && isObjectId(value.text)
                 ? "ObjectId(" + quotedText(value.text) + ")"
                 : quotedText(value.text);
    case TSqlValue::Null: return "null";
    case TSqlValue::Code: return value.text;
    default: break;
  }
  for (const char* word : {"true", "false"})
    if (equalIgnoringCase(value.text, word)) return word;
  refuse(value.place, value.text + " is neither a number nor quoted; two fields cannot be compared");
}

std::string modernFilter(const std::optional<TSqlLevel>& condition, const TFieldOf& fieldOf) {
  return condition ? termsText(TFilterPrinter(fieldOf).level(*condition, false)) : "{}";
}

}  // namespace hollowmere

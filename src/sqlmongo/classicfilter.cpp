#include <algorithm>

#include "json/value.h"
#include "sqlmongo/classicshell.h"
#include "sqlmongo/shelltext.h"
#include "sqlmongo/sqltexts.h"

namespace hollowmere {

namespace {

/// Kept oddity: any 24 characters make an identifier of a text that is compared with _id, except in IN lists.
bool readsAsObjectId(const TSqlName& column, const TSqlValue& value) {
  const auto characters =
      std::count_if(value.text.begin(), value.text.end(), [](char c) { return (c & 0xC0) != 0x80; });
  return value.kind == TSqlValue::Text && equalIgnoringCase(column.text, "_id") && characters == 24;
}

std::string valueText(const TSqlValue& value) {
  if (value.kind == TSqlValue::Number) return value.text;
  if (value.kind == TSqlValue::Null) return "null";
  return quotedText(value.text);
}

std::string compared(const TSqlName& column, const TSqlValue& value) {
  return readsAsObjectId(column, value) ? "ObjectId(" + quotedText(value.text) + ")" : valueText(value);
}

/// Kept oddities: exactly one "%" anchors at the start wherever it stands, "_" is no wildcard, and ". ^ $ |"
/// mean to the shell what they mean in regular expressions. What could end or spoil the expression is
/// escaped.
std::string pattern(const TSqlValue& value) {
  std::string text = value.text;
  const auto signs = std::count(text.begin(), text.end(), '%');
  std::erase(text, '%');
  const std::size_t first = text.find_first_not_of(' ');
  text =
      first == std::string::npos ? std::string() : text.substr(first, text.find_last_not_of(' ') - first + 1);
  std::string out = signs == 1 ? "/^" : "/";
  for (const char c : text) appendRegexCharacter(out, c, "/\\()[]{}*+?");
  // "//" would begin a comment.
  return (out == "/" ? "/(?:)" : out) + "/";
}

std::string listText(const std::vector<TSqlValue>& values) {
  std::string out = "[";
  for (const TSqlValue& value : values) out.append(out.size() > 1 ? "," : "").append(valueText(value));
  return out + "]";
}

std::string operatorText(const char* name, const std::string& operand) {
  return "{" + quotedText(name) + ":" + operand + "}";
}

std::string bodyOf(const TSqlCondition& condition) {
  const auto first = [&] { return compared(condition.column.name, condition.values.front()); };
  switch (condition.op) {
    case TSqlOperator::NotEqual: return operatorText("$ne", first());
    case TSqlOperator::GreaterOrEqual: return operatorText("$gte", first());
    case TSqlOperator::LessOrEqual: return operatorText("$lte", first());
    case TSqlOperator::Less: return operatorText("$lt", first());
    case TSqlOperator::Greater: return operatorText("$gt", first());
    case TSqlOperator::NotIn: return operatorText("$nin", listText(condition.values));
    case TSqlOperator::In: return operatorText("$in", listText(condition.values));
    case TSqlOperator::NotLike: return operatorText("$not", pattern(condition.values.front()));
    case TSqlOperator::Like: return pattern(condition.values.front());
    case TSqlOperator::IsNull: return "null";
    case TSqlOperator::IsNotNull: return operatorText("$ne", "null");
    default: return first();
  }
}

std::string documentOf(const TSqlCondition& condition) {
  return "{" + quotedText(condition.column.name.text) + ":" + bodyOf(condition) + "}";
}

std::string levelText(const TSqlLevel& level);

/// Kept oddity: BETWEEN counts as two conditions of its level.
void appendDocuments(std::vector<std::string>& documents, const TSqlOperand& operand) {
  const bool call = operand.condition.column.function != TSqlFunction::None;
  if (operand.hasNot || call || operand.condition.op == TSqlOperator::NotBetween)
    throw TSqlFault(sqltexts::badWhere, operand.place);
  if (operand.group) return documents.push_back(levelText(*operand.group));
  TSqlCondition condition = operand.condition;
  if (condition.op != TSqlOperator::Between) return documents.push_back(documentOf(condition));
  condition.op = TSqlOperator::GreaterOrEqual;
  documents.push_back(documentOf(condition));
  condition.op = TSqlOperator::LessOrEqual;
  std::swap(condition.values[0], condition.values[1]);
  documents.push_back(documentOf(condition));
}

/// Kept oddity: the connective behind the first operand joins all of its level.
std::string levelText(const TSqlLevel& level) {
  std::vector<std::string> documents;
  for (const TSqlOperand& operand : level.operands) appendDocuments(documents, operand);
  if (documents.size() == 1) return documents.front();
  const bool begins = level.operands.front().condition.op == TSqlOperator::Between;
  std::string out;
  for (const std::string& document : documents) out.append(out.empty() ? "" : ",").append(document);
  return operatorText(begins || level.ands.front() ? "$and" : "$or", "[" + out + "]");
}

}  // namespace

std::string classicFilter(const std::optional<TSqlLevel>& where) { return where ? levelText(*where) : "{}"; }

}  // namespace hollowmere

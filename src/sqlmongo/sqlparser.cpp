#include "sqlmongo/sqlparser.h"

#include <algorithm>

#include "json/json.h"
#include "sqlmongo/conditionparser.h"
#include "sqlmongo/shelltext.h"
#include "sqlmongo/sqltexts.h"

namespace hollowmere {

namespace {

std::string lower(std::string_view text) {
  std::string out(text);
  for (char& c : out)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c | 0x20);
  return out;
}

/// The shell's words that an assignment may use as they stand, by their lower-case form.
std::optional<std::string> shellWord(const TSqlToken& token) {
  for (const char* word : {"true", "false", "undefined", "NaN", "Infinity", "MinKey", "MaxKey"})
    if (token.isWord(word)) return word;
  return std::nullopt;
}

bool isShellCall(const TSqlToken& token) {
  static constexpr std::array<std::string_view, 8> names{
      "ISODate", "ObjectId", "NumberLong", "NumberInt", "NumberDecimal", "UUID", "Date", "Timestamp"};
  return std::find(names.begin(), names.end(), token.text) != names.end();
}

}  // namespace

TSqlParser::TSqlParser(std::string_view sql) : sql_(sql), tokens_(tokenizeSql(sql)) {
  while (!tokens_.list.empty() && tokens_.list.back().isSymbol(";")) tokens_.list.pop_back();
}

void TSqlParser::parseLists(TSqlStatement& statement) {
  recognise(statement);
  cutClauses(statement);
  checkStructure(statement);
  if (statement.kind == TSqlKind::Select) parseSelectList(statement);
  if (statement.kind == TSqlKind::Update) parseSetList(statement);
  statement.table = parseWholeName(tables_.front(), sqltexts::badTable);
  for (const TSqlRange item : groupBy_)
    statement.groupBy.push_back(parseWholeName(item, sqltexts::badGroupBy));
  for (const TSqlRange item : orderBy_) statement.orderBy.push_back(parseOrder(item));
  if (clauses_[Limit]) statement.limit = parseLimit();
}

void TSqlParser::recognise(TSqlStatement& statement) {
  const std::string text = lower(sql_);
  const auto occurs = [&](const char* word) { return text.find(word) != std::string::npos; };
  const auto begins = [&](const char* word) { return !tokens_.list.empty() && tokens_.list[0].isWord(word); };
  if (!isUtf8(sql_) || sql_.find('\0') != std::string_view::npos)
    throw TSqlFault(sqltexts::notRecognised, 0, "The text is no UTF-8 text, or it holds a zero byte.");
  if (tokens_.openQuote) {
    const std::size_t where = findWord("where", 0);
    const bool inWhere = where < tokens_.list.size() && tokens_.list[where].begin < *tokens_.openQuote;
    throw TSqlFault(inWhere ? sqltexts::badWhere : sqltexts::notRecognised, *tokens_.openQuote,
                    "this quote is not closed");
  }
  if (begins("select") && occurs("from"))
    statement.kind = TSqlKind::Select;
  else if (begins("update") && occurs("set"))
    statement.kind = TSqlKind::Update;
  else if (begins("delete") && occurs("from"))
    statement.kind = TSqlKind::Delete;
  else
    throw TSqlFault(sqltexts::notRecognised, 0);
}

std::size_t TSqlParser::findWord(std::string_view word, std::size_t from) const {
  while (from < tokens_.list.size() && !tokens_.list[from].isWord(word)) ++from;
  return from;
}

std::size_t TSqlParser::findClause(TClause clause, std::size_t from) const {
  static constexpr std::array<std::string_view, clauseCount> words{"where", "group", "having", "order",
                                                                   "limit"};
  const bool two = clause == GroupBy || clause == OrderBy;
  const std::size_t count = tokens_.list.size();
  std::size_t at = findWord(words[clause], from);
  while (two && at < count && (at + 1 == count || !tokens_.list[at + 1].isWord("by")))
    at = findWord(words[clause], at + 1);
  return at;
}

std::size_t TSqlParser::endOf(std::size_t from, int firstTried) const {
  for (int clause = firstTried; clause < clauseCount; ++clause)
    if (const std::size_t at = findClause(static_cast<TClause>(clause), from); at < tokens_.list.size())
      return at;
  return tokens_.list.size();
}

void TSqlParser::cutTail(std::size_t from) {
  for (int clause = Where; clause < clauseCount; ++clause) {
    const std::size_t at = findClause(static_cast<TClause>(clause), from);
    if (at == tokens_.list.size()) continue;
    const std::size_t begin = at + (clause == GroupBy || clause == OrderBy ? 2 : 1);
    const std::size_t end = endOf(begin, clause + 1);
    clauses_[static_cast<std::size_t>(clause)] = TSqlRange{begin, end};
    from = begin;
  }
}

std::size_t TSqlParser::placeOf(std::size_t token) const {
  return token < tokens_.list.size() ? tokens_.list[token].begin : sql_.size();
}

std::vector<TSqlRange> TSqlParser::split(TSqlRange range, const char* emptyItem) const {
  std::vector<TSqlRange> items;
  if (range.empty()) return items;
  for (std::size_t begin = range.begin, at = begin;; ++at) {
    if (at < range.end && !tokens_.list[at].isSymbol(",")) continue;
    if (at == begin) throw TSqlFault(emptyItem, placeOf(at));
    items.push_back({begin, at});
    begin = at + 1;
    if (at == range.end) return items;
  }
}

void TSqlParser::cutClauses(TSqlStatement& statement) {
  const std::size_t count = tokens_.list.size();
  std::size_t tail = count;
  if (statement.kind == TSqlKind::Update) {
    const std::size_t set = findWord("set", 1);
    if (set == count) throw TSqlFault(sqltexts::noSet, 0);
    tableRange_ = TSqlRange{1, set};
    tail = set + 1;
    columnRange_ = TSqlRange{tail, endOf(tail, Where)};
  } else {
    const std::size_t from = findWord("from", 1);
    if (statement.kind == TSqlKind::Select) columnRange_ = TSqlRange{1, from};
    if (from < count) {
      tail = from + 1;
      tableRange_ = TSqlRange{tail, endOf(tail, Where)};
    }
  }
  cutTail(tail);
  if (columnRange_)
    columns_ = split(*columnRange_,
                     statement.kind == TSqlKind::Update ? sqltexts::emptyAssignment : sqltexts::emptyColumn);
  if (tableRange_ && tableRange_->empty()) throw TSqlFault(sqltexts::noTable, placeOf(tableRange_->begin));
  if (tableRange_) tables_ = split(*tableRange_, sqltexts::emptyTable);
  const auto cut = [&](TClause clause, std::vector<TSqlRange>& items, const char* empty,
                       const char* emptyItem) {
    if (!clauses_[clause]) return;
    items = split(*clauses_[clause], emptyItem);
    if (items.empty()) throw TSqlFault(empty, placeOf(clauses_[clause]->begin));
  };
  cut(GroupBy, groupBy_, sqltexts::emptyGroupBy, sqltexts::emptyGroupBy);
  cut(Having, having_, sqltexts::noHaving, sqltexts::emptyHaving);
  cut(OrderBy, orderBy_, sqltexts::emptyOrderBy, sqltexts::emptyOrderBy);
  cut(Limit, limit_, sqltexts::emptyLimit, sqltexts::badLimit);
}

void TSqlParser::checkStructure(const TSqlStatement& statement) const {
  if (columnRange_ && columns_.empty()) throw TSqlFault(sqltexts::noColumns, placeOf(columnRange_->begin));
  if (tables_.empty()) throw TSqlFault(sqltexts::noTableName, sql_.size());
  if (tables_.size() > 1) throw TSqlFault(sqltexts::manyTables, placeOf(tables_[1].begin));
  if (having_.size() > 1 && statement.kind == TSqlKind::Select)
    throw TSqlFault(sqltexts::badHaving, placeOf(having_[1].begin));
  if (limit_.size() > 2) throw TSqlFault(sqltexts::badLimit, placeOf(limit_[2].begin));
}

void TSqlParser::parseSelectList(TSqlStatement& statement) const {
  for (const TSqlRange item : columns_) statement.columns.push_back(parseColumn(item));
}

TSqlColumn TSqlParser::parseColumn(TSqlRange item) const {
  const auto& list = tokens_.list;
  TSqlColumn column;
  column.place = list[item.begin].begin;
  if (item.size() > 1 && list[item.begin].isWord("distinct") && !list[item.begin + 1].isWord("as")) {
    column.distinct = true;
    ++item.begin;
    // DISTINCT(a) is written as often as DISTINCT a.
    if (item.size() > 2 && list[item.begin].isSymbol("(") && list[item.end - 1].isSymbol(")"))
      item = {item.begin + 1, item.end - 1};
  }
  std::optional<std::size_t> next = parseCall(list, item, column);
  if (!next && list[item.begin].isSymbol("*")) {
    column.all = true;
    next = item.begin + 1;
  }
  if (!next) next = parseName(list, item, column.name);
  if (!next) throw TSqlFault(sqltexts::badColumn, placeOf(item.begin), "a column is missing here");
  if (*next == item.end) return column;
  if (list[*next].isSymbol("("))
    throw TSqlFault(sqltexts::badColumn, column.place,
                    "only COUNT, SUM, AVG, MIN and MAX can be translated, not this function");
  if (!list[*next].isWord("as") || item.end != *next + 2 || list[*next + 1].kind == TSqlTokenKind::Symbol)
    throw TSqlFault(sqltexts::badColumn, placeOf(*next),
                    "behind a column only AS and one name may stand; an expression cannot be selected");
  const TSqlToken& alias = list[*next + 1];
  column.alias = {alias.content(), alias.kind != TSqlTokenKind::Word, alias.begin};
  return column;
}

void TSqlParser::parseSetList(TSqlStatement& statement) const {
  for (const TSqlRange item : columns_) statement.assignments.push_back(parseAssignment(item));
}

TSqlAssignment TSqlParser::parseAssignment(TSqlRange item) const {
  std::size_t equals = item.begin;
  while (equals < item.end && !tokens_.list[equals].isSymbol("=")) ++equals;
  if (equals == item.end)
    throw TSqlFault(sqltexts::badAssignment, placeOf(item.begin), "this is no assignment: \"=\" is missing");
  TSqlAssignment assignment;
  assignment.column.place = placeOf(item.begin);
  if (equals > item.begin) assignment.column = parseWholeName({item.begin, equals}, sqltexts::badAssignment);
  assignment.value.place = placeOf(equals);
  assignment.hasValue = equals + 1 < item.end;
  if (assignment.hasValue) assignment.value = parseAssigned({equals + 1, item.end});
  return assignment;
}

TSqlValue TSqlParser::parseAssigned(TSqlRange item) const {
  const TSqlToken& token = tokens_.list[item.begin];
  if (item.size() > 1) return parseShellCall(item);
  if (token.kind == TSqlTokenKind::Text || token.kind == TSqlTokenKind::Name)
    return {TSqlValue::Text, token.content(), token.begin};
  if (const auto number = numberText(token)) return {TSqlValue::Number, *number, token.begin};
  if (token.isWord("null")) return {TSqlValue::Null, {}, token.begin};
  if (const auto word = shellWord(token)) return {TSqlValue::Code, *word, token.begin};
  throw TSqlFault(
      sqltexts::badAssignment, token.begin,
      "only a number, a quoted text, NULL, true, false and the shell's own values can be assigned");
}

/// ISODate("..."), new Date() and the like: at most one number or text as the argument.
TSqlValue TSqlParser::parseShellCall(TSqlRange item) const {
  const auto& list = tokens_.list;
  TSqlValue value{TSqlValue::Code, {}, list[item.begin].begin};
  std::size_t at = item.begin;
  if (list[at].isWord("new")) {
    value.text = "new ";
    ++at;
  }
  const bool call = at + 2 < item.end && list[at].kind == TSqlTokenKind::Word && isShellCall(list[at]) &&
                    list[at + 1].isSymbol("(") && list[item.end - 1].isSymbol(")") && item.end - at <= 4;
  const bool argument = call && item.end - at == 4;
  const auto number = argument ? numberText(list[at + 2]) : std::nullopt;
  if (!call || (argument && !number && list[at + 2].kind != TSqlTokenKind::Text &&
                list[at + 2].kind != TSqlTokenKind::Name))
    throw TSqlFault(sqltexts::badAssignment, value.place, "an expression cannot be assigned");
  value.text.append(list[at].text).append("(");
  if (argument) value.text += number ? *number : quotedText(list[at + 2].content());
  value.text += ")";
  return value;
}

TSqlName TSqlParser::parseWholeName(TSqlRange item, const char* message) const {
  TSqlName name;
  const auto next = parseName(tokens_.list, item, name);
  if (!next || *next != item.end || name.text.empty())
    throw TSqlFault(message, placeOf(next && *next < item.end ? *next : item.begin),
                    "one name must stand here");
  return name;
}

TSqlOrder TSqlParser::parseOrder(TSqlRange item) const {
  TSqlOrder order;
  order.column.place = order.place = placeOf(item.begin);
  std::optional<std::size_t> next = parseCall(tokens_.list, item, order.column);
  if (!next) next = parseName(tokens_.list, item, order.column.name);
  if (!next) throw TSqlFault(sqltexts::badOrderBy, order.place, "a column is missing here");
  for (std::size_t at = *next; at < item.end; ++at) {
    if (tokens_.list[at].kind != TSqlTokenKind::Word)
      throw TSqlFault(sqltexts::badOrderBy, placeOf(at), "an expression cannot be sorted by");
    order.direction += ' ' + lower(tokens_.list[at].text);
  }
  return order;
}

TSqlLimit TSqlParser::parseLimit() const {
  TSqlLimit limit{{}, placeOf(clauses_[Limit]->begin)};
  for (const TSqlRange item : limit_) {
    const std::string_view text = tokens_.list[item.begin].text;
    const bool digits = std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    const auto number = numberText(tokens_.list[item.begin]);
    if (item.size() != 1 || !digits || !number || number->size() > 15)
      throw TSqlFault(sqltexts::badLimit, placeOf(item.begin),
                      "LIMIT takes whole numbers: LIMIT count, skipped");
    limit.numbers.push_back(*number);
  }
  return limit;
}

void TSqlParser::parseConditions(TSqlStatement& statement) {
  if (clauses_[Where]) statement.where = parseCondition(tokens_.list, *clauses_[Where]);
  if (!clauses_[Having]) return;
  statement.havingPlace = placeOf(clauses_[Having]->begin);
  try {
    statement.having = parseCondition(tokens_.list, *clauses_[Having]);
  } catch (const TSqlFault& fault) {
    statement.havingFault = fault;
  }
}

}  // namespace hollowmere

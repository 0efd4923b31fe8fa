#include "sqlmongo/modernshell.h"

#include <algorithm>
#include <array>

#include "sqlmongo/shelltext.h"
#include "sqlmongo/sqltexts.h"

namespace hollowmere {

namespace {

[[noreturn]] void refuse(std::size_t place, const std::string& reason) {
  throw TSqlFault(sqltexts::notRecognised, place, reason);
}

bool isPlain(const TSqlColumn& column) { return column.function == TSqlFunction::None; }

/// The shell has functions of these names where collections would stand.
bool isTaken(const std::string& name) {
  static constexpr std::array<std::string_view, 14> names{
      "aggregate", "auth",     "commandHelp", "getMongo", "getName", "getUsers", "help",
      "hello",     "hostInfo", "logout",      "stats",    "version", "watch",    "serverStatus"};
  return std::find(names.begin(), names.end(), name) != names.end();
}

std::string collection(const std::string& name) {
  return isIdentifierPath(name) && !isTaken(name) ? "db." + name
                                                  : "db.getCollection(" + quotedText(name) + ")";
}

bool isGrouped(const TSqlStatement& statement) {
  const auto groups = [](const TSqlColumn& column) { return column.distinct || !isPlain(column); };
  return !statement.groupBy.empty() ||
         std::any_of(statement.columns.begin(), statement.columns.end(), groups);
}

/// COUNT(*) alone, which countDocuments answers even when no document is there.
bool isCount(const TSqlStatement& statement) {
  const TSqlColumn& column = statement.columns.front();
  const bool rows = column.all || column.name.text.find_first_not_of("0123456789") == std::string::npos;
  return statement.columns.size() == 1 && column.function == TSqlFunction::Count && column.goodCall && rows &&
         !column.distinctCall && !column.distinct && statement.groupBy.empty() && !statement.havingPlace &&
         !statement.limit && statement.orderBy.empty();
}

TShellObject sortKeys(const TSqlStatement& statement) {
  TShellObject keys;
  for (const TSqlOrder& order : statement.orderBy) {
    std::string field = plainField(order.column);
    for (const TSqlColumn& column : statement.columns)
      if (column.alias.text == order.column.name.text) field = plainField(column);
    keys.add(field, sortDirection(order), order.place);
  }
  return keys;
}

bool selectsAll(const TSqlStatement& statement) {
  return std::any_of(statement.columns.begin(), statement.columns.end(),
                     [](const TSqlColumn& column) { return column.all; });
}

/// Columns under other names need a pipeline.
bool isRenamed(const TSqlStatement& statement) {
  return std::any_of(statement.columns.begin(), statement.columns.end(), [](const TSqlColumn& column) {
    return !column.alias.text.empty() && column.alias.text != column.name.text;
  });
}

std::string projection(const TSqlStatement& statement) {
  TShellObject columns;
  for (const TSqlColumn& column : statement.columns) {
    const std::string field = fieldName(column.name);
    if (column.alias.text.empty() || column.alias.text == field)
      columns.add(field, "1", column.place);
    else
      columns.add(fieldName(column.alias), quotedText("$" + field), column.alias.place);
  }
  if (!columns.has("_id")) columns.add("_id", "0");
  return columns.text();
}

std::string printRenamed(const TSqlStatement& statement) {
  TPipeline pipeline;
  if (statement.where) pipeline.add("$match", modernFilter(statement.where, plainField));
  pipeline.addOrder(sortKeys(statement), statement.limit);
  pipeline.add("$project", projection(statement));
  return pipeline.text();
}

std::string printFind(const TSqlStatement& statement) {
  const std::string filter = modernFilter(statement.where, plainField);
  std::string out = ".find(" + filter + (selectsAll(statement) ? "" : ", " + projection(statement)) + ")";
  if (const TShellObject keys = sortKeys(statement); !keys.empty()) out += ".sort(" + keys.text() + ")";
  if (!statement.limit) return out + ";";
  if (const std::string skip = skipped(*statement.limit); !skip.empty()) out += ".skip(" + skip + ")";
  return out + ".limit(" + rowCount(*statement.limit) + ");";
}

std::string printSelect(const TSqlStatement& statement) {
  for (const TSqlColumn& column : statement.columns)
    if (column.distinct && &column != &statement.columns.front())
      refuse(column.place, "DISTINCT stands before the first column only");
  if (isGrouped(statement))
    return isCount(statement) ? ".countDocuments(" + modernFilter(statement.where, plainField) + ");"
                              : groupPipeline(statement);
  if (statement.havingPlace) refuse(statement.havingPlace, "HAVING needs GROUP BY or an aggregate");
  return isRenamed(statement) && !selectsAll(statement) ? printRenamed(statement) : printFind(statement);
}

/// What a writing statement cannot say would otherwise change more documents than was meant.
void refuseSelectClauses(const TSqlStatement& statement) {
  const std::string kind = statement.kind == TSqlKind::Update ? "an UPDATE" : "a DELETE";
  if (!statement.groupBy.empty()) refuse(statement.groupBy.front().place, "GROUP BY cannot stand in " + kind);
  if (statement.havingPlace) refuse(statement.havingPlace, "HAVING cannot stand in " + kind);
  if (!statement.orderBy.empty()) refuse(statement.orderBy.front().place, "ORDER BY cannot stand in " + kind);
  if (statement.limit) refuse(statement.limit->place, "LIMIT cannot stand in " + kind);
}

std::string printUpdate(const TSqlStatement& statement) {
  TShellObject sets, unsets;
  for (const TSqlAssignment& assignment : statement.assignments) {
    if (assignment.column.text.empty()) throw TSqlFault(sqltexts::noColumnName, assignment.column.place);
    if (!assignment.hasValue) throw TSqlFault(sqltexts::noColumnValue, assignment.value.place);
    const std::string field = fieldName(assignment.column);
    if (sets.has(field) || unsets.has(field)) refuse(assignment.column.place, field + " is assigned twice");
    if (assignment.value.kind == TSqlValue::Null)
      unsets.add(field, "1");
    else
      sets.add(field, modernValue(assignment.value, {}));
  }
  TShellObject document;
  if (!sets.empty()) document.add("$set", sets.text());
  if (!unsets.empty()) document.add("$unset", unsets.text());
  return ".updateMany(" + modernFilter(statement.where, plainField) + ", " + document.text() + ");";
}

}  // namespace

std::string sortDirection(const TSqlOrder& order) {
  if (order.direction.empty() || order.direction == " asc") return "1";
  if (order.direction != " desc")
    refuse(order.place, "behind a column of ORDER BY only ASC and DESC may stand");
  return "-1";
}

std::string skipped(const TSqlLimit& limit) {
  return limit.numbers.size() < 2 || limit.numbers[1] == "0" ? std::string() : limit.numbers[1];
}

const std::string& rowCount(const TSqlLimit& limit) {
  if (limit.numbers.front() == "0")
    refuse(limit.place, "LIMIT 0 cannot be said: the shell takes 0 for no limit");
  return limit.numbers.front();
}

void TShellObject::add(const std::string& key, const std::string& value, std::size_t place) {
  if (has(key)) refuse(place, key + " stands here twice");
  keys_.push_back(key);
  text_.append(text_.empty() ? "" : ",").append(quotedText(key)).append(":").append(value);
}

bool TShellObject::has(const std::string& key) const {
  return std::find(keys_.begin(), keys_.end(), key) != keys_.end();
}

void TPipeline::add(const char* stage, const std::string& operand) {
  stages_.append(stages_.empty() ? "" : ",\n").append("  {").append(quotedText(stage)).append(":");
  stages_.append(operand).append("}");
}

void TPipeline::addOrder(const TShellObject& order, const std::optional<TSqlLimit>& limit) {
  if (!order.empty()) add("$sort", order.text());
  if (!limit) return;
  if (const std::string skip = skipped(*limit); !skip.empty()) add("$skip", skip);
  add("$limit", rowCount(*limit));
}

std::string printModern(const TSqlStatement& statement) {
  const std::string target = collection(statement.table.text);
  if (statement.kind == TSqlKind::Select) return target + printSelect(statement);
  refuseSelectClauses(statement);
  if (statement.kind == TSqlKind::Update) return target + printUpdate(statement);
  return target + ".deleteMany(" + modernFilter(statement.where, plainField) + ");";
}

}  // namespace hollowmere

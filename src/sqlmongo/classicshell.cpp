#include "sqlmongo/classicshell.h"

#include <algorithm>
#include <functional>

#include "json/value.h"
#include "sqlmongo/shelltext.h"
#include "sqlmongo/sqltexts.h"

namespace hollowmere {

namespace {

bool isPlain(const TSqlColumn& column) { return column.function == TSqlFunction::None; }

/// Each plain column with its partner in GROUP BY, in any order.
bool matchGroups(const TSqlStatement& statement) {
  std::vector<std::string> columns, groups;
  for (const TSqlColumn& column : statement.columns)
    if (isPlain(column)) columns.push_back(column.name.text);
  for (const TSqlName& name : statement.groupBy) groups.push_back(name.text);
  std::sort(columns.begin(), columns.end());
  std::sort(groups.begin(), groups.end());
  return columns == groups;
}

/// Accumulators of a dotted argument have the dot in their names.
std::string accessor(const std::string& key) {
  return isIdentifier(key) ? "prev." + key : "prev[" + quotedText(key) + "]";
}

/// The accumulators of a group command with the lines of its functions, each once.
class TAccumulators {
 public:
  void add(const TSqlColumn& column) {
    const std::string argument = column.all ? std::string() : column.name.text;
    const std::string value = memberOf("obj", argument);
    switch (column.function) {
      case TSqlFunction::Count:
        // Kept oddity: every COUNT counts documents.
        return put("cntVar_",
                   "if (true != null) if (true instanceof Array) prev.cntVar_ += true.length; "
                   "else prev.cntVar_++;");
      case TSqlFunction::Sum: {
        const std::string sum = accessor("sum_" + argument);
        return put("sum_" + argument, sum + " = " + sum + " + " + value + " ;");
      }
      case TSqlFunction::Min: return putExtreme("minVal_" + argument, "min", value);
      case TSqlFunction::Max: return putExtreme("maxVal_" + argument, "max", value);
      default: return putAverage(argument, value);
    }
  }

  [[nodiscard]] std::string initial() const {
    std::string out = "{";
    for (const std::string& key : keys_)
      out.append(out.size() > 1 ? "," : "").append(quotedText(key)).append(":0");
    return out + "}";
  }
  [[nodiscard]] std::string reduce() const { return "function(obj, prev) {\r" + reduce_ + "}"; }
  [[nodiscard]] bool finalizes() const { return !finalize_.empty(); }
  [[nodiscard]] std::string finalize() const { return "function(prev) {\r" + finalize_ + "}"; }

 private:
  bool addKey(const std::string& key) {
    if (std::find(keys_.begin(), keys_.end(), key) != keys_.end()) return false;
    keys_.push_back(key);
    return true;
  }

  void put(const std::string& key, const std::string& line) {
    if (addKey(key)) reduce_ += line + "\r";
  }

  /// Kept oddity: the accumulator begins at 0, so no minimum is above it and no maximum below.
  void putExtreme(const std::string& key, const char* function, const std::string& value) {
    const std::string own = accessor(key);
    put(key,
        own + " = isNaN(" + own + ") ? " + value + " : Math." + function + "(" + own + ", " + value + ");");
  }

  void putAverage(const std::string& argument, const std::string& value) {
    const std::string count = accessor("cntAvg_" + argument), sum = accessor("sumAvg_" + argument);
    put("cntAvg_" + argument, count + "++;");
    put("sumAvg_" + argument, sum + " += " + value + ";");
    if (!addKey("avg_" + argument)) return;
    finalize_ += accessor("avg_" + argument) + " = " + sum + " / " + count + ";\r" + "delete " + sum + ";\r" +
                 "delete " + count + ";\r";
  }

  std::vector<std::string> keys_;
  std::string reduce_;
  std::string finalize_;
};

/// Members of an object literal, each key once.
class TFlags {
 public:
  void add(const std::string& key, const char* value) {
    if (std::find(keys_.begin(), keys_.end(), key) != keys_.end()) return;
    keys_.push_back(key);
    text_.append(text_.empty() ? "" : ",").append(quotedText(key)).append(":").append(value);
  }
  [[nodiscard]] std::string text() const { return "{" + text_ + "}"; }

 private:
  std::vector<std::string> keys_;
  std::string text_;
};

std::string printGroup(const TSqlStatement& statement) {
  TFlags keys;
  for (const TSqlName& name : statement.groupBy) keys.add(name.text, "1");
  TAccumulators accumulators;
  for (const TSqlColumn& column : statement.columns)
    if (!isPlain(column)) accumulators.add(column);
  std::string document = "{\"key\":" + keys.text() + ",\"initial\":" + accumulators.initial() +
                         ",\"reduce\":" + accumulators.reduce();
  if (accumulators.finalizes()) document += ",\"finalize\":" + accumulators.finalize();
  return ".group( \r" + document + ",\"cond\":" + classicFilter(statement.where) + "}\r);";
}

std::string printDistinct(const TSqlStatement& statement) {
  const TSqlColumn& column = statement.columns.front();
  if (statement.columns.size() > 1 || column.all || !isPlain(column))
    throw TSqlFault(sqltexts::emptyColumn, column.place);
  return ".distinct( " + quotedText(column.name.text) + ", \r" + classicFilter(statement.where) + "\r);";
}

std::string projection(const TSqlStatement& statement) {
  TFlags columns;
  bool id = false;
  for (const TSqlColumn& column : statement.columns) {
    if (column.all) return "{}";
    id = id || equalIgnoringCase(column.name.text, "_id");
    columns.add(column.name.text, "1");
  }
  if (!id) columns.add("_id", "0");
  return columns.text();
}

/// Kept oddity: any other word than one that begins with "asc" sorts descending.
std::string sortPart(const std::vector<TSqlOrder>& orderBy) {
  std::string items;
  for (const TSqlOrder& order : orderBy) {
    if (!isPlain(order.column)) throw TSqlFault(sqltexts::badOrderBy, order.place);
    const bool up = order.direction.empty() || order.direction.find(" asc") != std::string::npos;
    items.append(items.empty() ? "" : ",")
        .append(bareKey(order.column.name.text))
        .append(up ? ": 1" : ": -1");
  }
  return ".sort({ " + items + " })";
}

std::string limitPart(const TSqlLimit& limit) {
  const std::string count = ".limit(" + limit.numbers.front() + ")";
  return limit.numbers.size() == 1 ? count : count + ".skip(" + limit.numbers[1] + ")";
}

std::string printFind(const TSqlStatement& statement) {
  std::string out = ".find( \r" + classicFilter(statement.where) + ",\r" + projection(statement) + "\r)";
  if (!statement.orderBy.empty()) out += sortPart(statement.orderBy);
  if (statement.limit) out += limitPart(*statement.limit);
  return out + ";";
}

/// Kept oddity: the command has no place for ORDER BY, LIMIT and HAVING of a group or distinct command.
std::string printSelect(const TSqlStatement& statement) {
  const auto has = [&](const auto& what) {
    return std::any_of(statement.columns.begin(), statement.columns.end(), what);
  };
  if (has([](const TSqlColumn& column) { return column.distinct; })) return printDistinct(statement);
  if (has([](const TSqlColumn& column) { return !isPlain(column); })) return printGroup(statement);
  return printFind(statement);
}

std::string assignedText(const TSqlValue& value) {
  return value.kind == TSqlValue::Text ? quotedText(value.text) : value.text;
}

std::string updateDocument(const std::vector<TSqlAssignment>& assignments) {
  std::string sets, unsets;
  for (const TSqlAssignment& assignment : assignments) {
    if (assignment.column.text.empty()) throw TSqlFault(sqltexts::noColumnName, assignment.column.place);
    if (!assignment.hasValue) throw TSqlFault(sqltexts::noColumnValue, assignment.value.place);
    const std::string column = quotedText(assignment.column.text) + " : ";
    if (assignment.value.kind == TSqlValue::Null)
      unsets.append(unsets.empty() ? "" : ",\r").append(column).append("1 ");
    else
      sets.append(sets.empty() ? "" : ",\r").append(column).append(assignedText(assignment.value));
  }
  std::string out = "{\r";
  if (!sets.empty()) out += " $set : {" + sets + "}";
  if (!sets.empty() && !unsets.empty()) out += ",\r";
  if (!unsets.empty()) out += " $unset : {" + unsets + "}";
  return out + "\r}";
}

std::string printUpdate(const TSqlStatement& statement) {
  const std::string filter = classicFilter(statement.where);
  return ".update( \r" + filter + ",\r" + updateDocument(statement.assignments) + "\r);";
}

std::string collection(const std::string& name) {
  return isIdentifierPath(name) ? "db." + name : "db.getCollection(" + quotedText(name) + ")";
}

}  // namespace

void checkClassicGroups(const TSqlStatement& statement) {
  if (statement.kind != TSqlKind::Select) return;
  const auto plain = std::count_if(statement.columns.begin(), statement.columns.end(), isPlain);
  const bool aggregates = plain != static_cast<std::ptrdiff_t>(statement.columns.size());
  const bool groups = !statement.groupBy.empty();
  const std::size_t place = groups ? statement.groupBy.front().place : statement.columns.front().place;
  if (groups && plain > 0 && !matchGroups(statement)) throw TSqlFault(sqltexts::groupsDiffer, place);
  if (!groups && aggregates && plain > 0) throw TSqlFault(sqltexts::noGroupBy, place);
  if (groups && aggregates && plain == 0) throw TSqlFault(sqltexts::noGroupColumns, place);
  if (groups && !aggregates) throw TSqlFault(sqltexts::noAggregates, place);
  for (const TSqlColumn& column : statement.columns) {
    const bool counts = column.function == TSqlFunction::Count;
    const bool good =
        counts ? !column.name.text.empty() || column.all : column.goodCall && !column.distinctCall;
    if (!isPlain(column) && !good) throw TSqlFault(sqltexts::badCall, column.place);
  }
}

std::string printClassic(const TSqlStatement& statement) {
  const std::string target = collection(statement.table.text);
  switch (statement.kind) {
    case TSqlKind::Select: return target + printSelect(statement);
    case TSqlKind::Update: return target + printUpdate(statement);
    default: return target + ".remove( \r" + classicFilter(statement.where) + "\r);";
  }
}

}  // namespace hollowmere

#include "sqlmongo/statementmaker.h"

#include <algorithm>

#include "json/json.h"

namespace hollowmere {

namespace {

const std::vector<std::string> texts{"",       "a",    "ab",   "abc", "a.c",  "a%b",   "it's",   "(x)", "[y",
                                     "slash/", "\\d+", "ab\n", "B",   "ünï€", "and x", "a = 1,", "^a$"};

std::string sqlText(const std::string& text) {
  std::string out = "'";
  for (const char c : text) out.append(c == '\'' ? 2 : 1, c);
  return out + "'";
}

std::string listed(const std::vector<std::string>& items) {
  std::string out;
  for (const std::string& item : items) out += (out.empty() ? "" : ", ") + item;
  return out;
}

void append(TMadeStatement& made, const std::string& text) {
  made.sql += text;
  made.sqliteText += text;
}

TSampleRow sampleRow(int id, std::mt19937& random) {
  TSampleRow row{std::to_string(id), TObject{{"id", id}}};
  const auto add = [&](const char* name, const std::string& sql, TValue value) {
    const bool isNull = random() % 5 == 0;
    row.sqlValues += ", " + (isNull ? "null" : sql);
    if (!isNull)
      row.document.add(name, std::move(value));
    else if (random() % 2)
      row.document.add(name, {});
  };
  const int a = static_cast<int>(random() % 12) - 3;
  add("a", std::to_string(a), a);
  const int halves = static_cast<int>(random() % 40);
  add("b", std::to_string(halves * 0.5), halves * 0.5);
  for (const char* name : {"c", "d"}) {
    const std::string& text = texts[random() % texts.size()];
    add(name, sqlText(text), text);
  }
  return row;
}

}  // namespace

const std::vector<TSampleRow>& sampleRows() {
  static const std::vector<TSampleRow> rows = [] {
    std::mt19937 random(3);
    std::vector<TSampleRow> made;
    for (int id = 0; id < 200; ++id) made.push_back(sampleRow(id, random));
    return made;
  }();
  return rows;
}

const std::vector<std::string>& allColumns() {
  static const std::vector<std::string> columns{"id", "a", "b", "c", "d"};
  return columns;
}

TMadeStatement wholeTable() {
  const std::string sql = "select * from t order by id";
  return {sql, sql, allColumns(), true, false};
}

std::string TStatementMaker::number() {
  const int value = static_cast<int>(below(14)) - 4;
  return chance(30) ? std::to_string(value) + ".5" : std::to_string(value);
}

std::string TStatementMaker::text() { return sqlText(any(texts)); }

std::string TStatementMaker::comparison(const std::string& column, bool isText) {
  static const std::vector<std::string> operators{" = ", "=",  " <> ", "!=",   " < ",
                                                  ">",   "<=", " >= ", " > = "};
  static const std::vector<std::string> patterns{"a%",  "%b",  "%a%", "_b%", "a_c", "ab",   "%",   "%%",
                                                 "",    "a.c", "%(%", "[%",  "a%c", "_",    "ab_", "%'%",
                                                 "ün%", "\\%", "a\\", "%/",  "^%$", "%, %", "%\n", "__%"};
  const auto value = [&] { return isText ? text() : number(); };
  const std::string negation = chance(40) ? " not" : "";
  switch (below(isText ? 6 : 5)) {
    case 0:
      return column + negation + " in (" + value() + ", " + value() +
             (chance(50) ? ")" : "," + value() + ")");
    case 1: return column + negation + " between " + value() + " and " + value();
    case 2: return column + (chance(50) ? " is null" : " IS NOT NULL");
    case 5: return column + negation + " like " + sqlText(any(patterns));
    default: {
      // SQLite wants the parts of an operator together.
      const std::string& op = any(operators);
      return column + op + value();
    }
  }
}

std::string TStatementMaker::condition(int depth) {
  std::string out;
  for (std::size_t count = 1 + below(3); count > 0; --count) {
    if (!out.empty()) out += chance(50) ? " and " : " OR ";
    if (chance(20)) out += "not ";
    if (depth > 0 && chance(35)) {
      out += "(" + condition(depth - 1) + ")";
      continue;
    }
    const std::string& column = any(allColumns());
    // Of "not a not in" SQL takes no notice of where the words stand.
    out += comparison(column, column == "c" || column == "d");
  }
  return out;
}

std::string TStatementMaker::where(std::size_t percent) {
  return chance(percent) ? " where " + condition(2) : "";
}

std::string TStatementMaker::direction() {
  static const std::vector<std::string> words{"", " asc", " DESC"};
  return any(words);
}

/// The count stands first here, and behind OFFSET's number in SQLite.
std::string TStatementMaker::limit(TMadeStatement& made) {
  const std::string count = std::to_string(1 + below(20)), skip = std::to_string(below(10));
  const bool skips = chance(50);
  made.sql += " limit " + count + (skips ? ", " + skip : "");
  made.sqliteText += " limit " + count + (skips ? " offset " + skip : "");
  return count;
}

std::vector<std::string> TStatementMaker::someColumns() {
  std::vector<std::string> columns = allColumns();
  std::shuffle(columns.begin(), columns.end(), random_);
  columns.resize(1 + below(columns.size()));
  return columns;
}

TMadeStatement TStatementMaker::plain() {
  TMadeStatement made;
  const bool all = chance(30);
  made.columns = all ? allColumns() : someColumns();
  std::vector<std::string> items = made.columns;
  for (std::size_t i = 0; !all && i < items.size(); ++i)
    if (chance(15)) items[i] += " as " + (made.columns[i] = "x" + std::to_string(i));
  append(made, "select " + (all ? "*" : listed(items)) + " from t" + where(80));
  if (chance(50)) return made;
  made.ordered = true;
  // The last key leaves no two rows alike.
  append(made, " order by " + (chance(70) ? any(allColumns()) + "_" : "id_"));
  const auto key = [&](std::string& text, const std::string& words) {
    text.erase(text.rfind('_'));
    text += words;
  };
  const bool byId = made.sql.ends_with(" id_");
  const std::string words = direction() + (byId ? "" : ", id" + direction());
  key(made.sql, words);
  key(made.sqliteText, words);
  if (chance(50)) limit(made);
  return made;
}

TMadeStatement TStatementMaker::distinct() {
  TMadeStatement made;
  made.columns = someColumns();
  append(made, "select distinct " + listed(made.columns) + " from t" + where(50));
  if (chance(50)) return made;
  made.ordered = true;
  std::vector<std::string> keys = made.columns;
  for (std::string& key : keys) key += direction();
  append(made, " order by " + listed(keys));
  if (chance(50)) limit(made);
  return made;
}

TMadeStatement TStatementMaker::grouped() {
  struct TAggregate {
    std::string sql, sqlite, name;
  };
  // A sum of nothing is 0 here and null in SQL.
  static const std::vector<TAggregate> aggregates{{"count(*)", "count(*)", "count"},
                                                  {"COUNT(a)", "count(a)", "count_a"},
                                                  {"sum(a)", "coalesce(sum(a), 0)", "sum_a"},
                                                  {"Sum( b )", "coalesce(sum(b), 0)", "sum_b"},
                                                  {"avg(b)", "avg(b)", "avg_b"},
                                                  {"min(a)", "min(a)", "min_a"},
                                                  {"MAX(c)", "max(c)", "max_c"},
                                                  {"max(b)", "max(b)", "max_b"}};
  TMadeStatement made;
  std::vector<std::string> keys;
  if (chance(80)) keys = someColumns();
  if (keys.size() > 3) keys.resize(3);
  std::vector<std::string> ours = keys, theirs = keys;
  made.columns = keys;
  std::vector<TAggregate> chosen = aggregates;
  std::shuffle(chosen.begin(), chosen.end(), random_);
  chosen.resize(1 + below(3));
  for (TAggregate& one : chosen) {
    const bool renamed = chance(30);
    if (renamed) one.name = "n" + std::to_string(made.columns.size());
    ours.push_back(one.sql + (renamed ? " as " + one.name : ""));
    theirs.push_back(one.sqlite);
    made.columns.push_back(one.name);
  }
  const std::string tail = " from t" + where(60) + (keys.empty() ? "" : " group by " + listed(keys));
  made.sql = "select " + listed(ours) + tail;
  made.sqliteText = "select " + listed(theirs) + tail;
  const TAggregate& asked = any(aggregates);
  const bool lone = keys.empty() && chosen.size() == 1 && chosen[0].sql == "count(*)";
  if (chance(40)) {
    const std::string rest = " > " + (asked.name == "max_c" ? text() : number());
    const std::string second =
        keys.empty() || keys[0] == "c" || keys[0] == "d" ? "" : " or " + keys[0] + " <= " + number();
    made.sql += " having " + asked.sql + rest + second;
    made.sqliteText +=
        " having (" + asked.sqlite + rest + second + ")" + (keys.empty() ? " and count(*) > 0" : "");
  } else if (keys.empty() && !lone) {
    // Without rows there is no group here, and one in SQL.
    made.sqliteText += " having count(*) > 0";
  }
  if (keys.empty() || chance(40)) return made;
  made.ordered = true;
  const std::string first = direction();
  std::vector<std::string> order = keys;
  for (std::string& key : order) key += direction();
  made.sql += " order by " + asked.sql + first + ", " + listed(order);
  made.sqliteText += " order by " + asked.sqlite + first + ", " + listed(order);
  if (chance(50)) limit(made);
  return made;
}

TMadeStatement TStatementMaker::writing() {
  TMadeStatement made;
  made.writes = made.ordered = true;
  if (chance(40)) {
    append(made, "delete from t" + where(95));
    return made;
  }
  static const std::vector<std::string> assignments{
      "a = 5",  "a=null",         "b = -1.5",   "b = NULL", "c = 'x, y = ''z'''",
      "c=null", "d = \"a\"\"b\"", "d = '(and)'"};
  const std::string& first = any(assignments);
  const std::string& second = any(assignments);
  append(made, "update t set " + first + (first[0] == second[0] ? "" : ", " + second) + where(95));
  return made;
}

TMadeStatement TStatementMaker::make() {
  const std::size_t kind = below(10);
  TMadeStatement made = kind < 4 ? plain() : kind < 5 ? distinct() : kind < 8 ? grouped() : writing();
  // Apart, the parts of an operator are no SQL elsewhere.
  for (std::size_t at = made.sqliteText.find("> ="); at != std::string::npos;
       at = made.sqliteText.find("> ="))
    made.sqliteText.erase(at + 1, 1);
  return made;
}

}  // namespace hollowmere

// Translates statements of some 300 characters, and has the SQL parser alone read the same ones. Prints one
// line of JSON: seconds of CPU for 10,000 statements, round by round.

#include <pg_query.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include "json/json.h"
#include "sqlmongo/sqltomongo.h"

namespace {

using hollowmere::TShellForm;

double cpuSeconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

std::vector<std::string> makeStatements() {
  std::vector<std::string> statements;
  for (int i = 0; i < 10'000; ++i) {
    const std::string n = std::to_string(i);
    std::string sql = i % 4 == 0 ? "select city, count(*), sum(n" + n + ") from people where "
                                 : "select a, b, name from t" + n + " where ";
    sql += "(name like 'A" + n + "%' or city in ('Dresden', 'Berlin', 'x" + n +
           "')) and born >= '1990-01-01' and n <> " + n;
    for (int more = 0; sql.size() < 250; ++more)
      sql += " and field" + std::to_string(more) + " = 'value " + n + "'";
    sql += " and size between 1.5 and " + n;
    statements.push_back(sql + (i % 4 == 0 ? " group by city" : " order by a desc limit 10, 20"));
  }
  return statements;
}

bool parserAlone(const std::string& sql) {
  // Its grammar has another LIMIT.
  const PgQuerySplitResult result = pg_query_split_with_parser(sql.substr(0, sql.rfind(" limit")).c_str());
  const bool good = !result.error;
  pg_query_free_split_result(result);
  return good;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> statements = makeStatements();
  const std::vector<std::pair<const char*, std::function<bool(const std::string&)>>> ways{
      {"classic", [](const std::string& sql) { return SqlToMongo(sql, TShellForm::Classic).translated(); }},
      {"modern", [](const std::string& sql) { return SqlToMongo(sql, TShellForm::Modern).translated(); }},
      {"parser", parserAlone}};
  std::vector<hollowmere::TList> seconds(ways.size());
  for (int round = 0; round < (argc > 1 ? std::atoi(argv[1]) : 1); ++round)
    for (std::size_t way = 0; way < ways.size(); ++way) {
      const double start = cpuSeconds();
      for (const std::string& sql : statements)
        if (!ways[way].second(sql)) return std::fprintf(stderr, "refused: %s\n", sql.c_str()), 1;
      seconds[way].emplace_back(cpuSeconds() - start);
    }
  hollowmere::TObject result;
  std::size_t bytes = 0;
  for (const std::string& sql : statements) bytes += sql.size();
  result.add("length", static_cast<double>(bytes) / static_cast<double>(statements.size()));
  for (std::size_t way = 0; way < ways.size(); ++way) result.add(ways[way].first, seconds[way]);
  std::puts(toJson(result).c_str());
  return 0;
}

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

#include "json/json.h"
#include "sqlmongo/sqltomongo.h"
#include "support/jsshell.h"

namespace hollowmere {

namespace {

std::string replaced(std::string text, std::string_view what, std::string_view with) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size()))
    text.replace(at, what.size(), with);
  return text;
}

/// Line ends as they stand in the case files.
std::string shown(const std::string& text) { return replaced(replaced(text, "\r", "␍"), "\n", "␊"); }
std::string meant(const std::string& text) { return replaced(replaced(text, "␍", "\r"), "␊", "\n"); }

/// What a case's line says: "= " the classic form, "~ " the modern one; "! " before a message.
std::string outcome(const std::string& sql, bool modern) {
  static TJsShell shell;
  const TSqlToMongo result = SqlToMongo(sql, modern ? TShellForm::Modern : TShellForm::Classic);
  if (!result.translated())
    return (modern ? "! " + placeText(sql, result.place) + ": " : "! ") + result.message;
  EXPECT_NO_THROW(shell.parse(result.shellText)) << sql;
  return shown(result.shellText);
}

class TSqlMongoCases : public testing::TestWithParam<std::string> {};

/// A statement's line, then what each form makes of it. HOLLOWMERE_WRITE_CASES writes the file anew.
TEST_P(TSqlMongoCases, allHold) {
  const auto path =
      std::filesystem::path(HOLLOWMERE_TESTS_DIR) / "cases" / "sqlmongo" / (GetParam() + ".txt");
  std::ifstream file(path);
  std::string sql, written;
  int number = 0, checked = 0;
  for (std::string line; std::getline(file, line);) {
    ++number;
    const bool expectation = line.starts_with("= ") || line.starts_with("~ ");
    if (!expectation && !line.empty() && line[0] != '#') sql = meant(line);
    const std::string found = expectation ? line.substr(0, 2) + outcome(sql, line[0] == '~') : line;
    if (found != line)
      ADD_FAILURE_AT(path.c_str(), number) << sql << "\n expected " << line << "\n got      " << found;
    checked += expectation;
    written += found + "\n";
  }
  EXPECT_GT(checked, 0) << path;
  if (std::getenv("HOLLOWMERE_WRITE_CASES")) std::ofstream(path) << written;
}

INSTANTIATE_TEST_SUITE_P(Files, TSqlMongoCases,
                         testing::Values("select", "where", "values", "groups", "writes", "refused"),
                         [](const auto& file) { return file.param; });

/// The functions inside a group command do what their names say, the extremes from 0 on.
TEST(SqlMongo, GroupFunctionsRun) {
  TJsShell shell;
  const auto text = SqlToMongo(
      "select city, count(*), sum(n), avg(n), min(n), max(n), avg(n) as twice, sum(\"deep.x\") from t group "
      "by city");
  ASSERT_TRUE(text.translated()) << text.message;
  EXPECT_EQ(
      shell.group(text.shellText, R"([{"city":"A","n":4,"deep":{"x":1}},{"city":"B","n":-3,"deep":{"x":5}},
                                            {"city":"A","n":8,"deep":{"x":2}}])"),
      R"([{"city":"A","cntVar_":2,"sum_n":12,"avg_n":6,"minVal_n":0,"maxVal_n":8,"sum_deep.x":3},)"
      R"({"city":"B","cntVar_":1,"sum_n":-3,"avg_n":-3,"minVal_n":-3,"maxVal_n":0,"sum_deep.x":5}])");
}

/// A text of every printable character, and some more, arrives unchanged in each place of both forms.
TEST(SqlMongo, TextsArriveUnchanged) {
  TJsShell shell;
  std::string text = "where and (or) {=} <> , /x/ $ObjectId$( é€😀 \xE2\x80\xA8 \n\r\t group by -- /* */ ";
  for (char c = ' '; c < 127; ++c) text += c;
  const std::string quoted = "'" + replaced(text, "'", "''") + "'";
  for (const TShellForm form : {TShellForm::Classic, TShellForm::Modern}) {
    const auto value = [&](const std::string& sql, std::initializer_list<const char*> path) {
      const auto made = SqlToMongo(sql, form);
      EXPECT_TRUE(made.translated()) << sql << made.message;
      const TValue root = parseJson(shell.run(made.shellText));
      const TValue* at =
          &root.asObject().find("calls")->asList()[0].asObject().find("arguments")->asList()[0];
      if (sql.starts_with("update"))
        at = &root.asObject().find("calls")->asList()[0].asObject().find("arguments")->asList()[1];
      for (const char* name : path) at = at->is(TKind::List) ? &at->asList()[0] : at->asObject().find(name);
      return *at;
    };
    EXPECT_EQ(value("delete from t where a = " + quoted, {"a"}), TValue(text));
    EXPECT_EQ(value("select * from t where a >= " + quoted, {"a", "$gte"}), TValue(text));
    EXPECT_EQ(value("select * from t where a in (" + quoted + ", 1)", {"a", "$in", "first"}), TValue(text));
    EXPECT_EQ(value("update t set a = " + quoted, {"$set", "a"}), TValue(text));
  }
}

TEST(SqlMongo, PlacesCountCharacters) {
  EXPECT_EQ(placeText("select", 0), "line 1, column 1");
  EXPECT_EQ(placeText("é\nü x", 6), "line 2, column 3");
  const std::string sql = "select * from t\nwhere ä = 'ö' and b = c";
  const auto refused = SqlToMongo(sql, TShellForm::Modern);
  EXPECT_EQ(placeText(sql, refused.place), "line 2, column 23") << refused.message;
}

/// Deep and long statements end in a result or a message.
TEST(SqlMongo, SizeDoesNoHarm) {
  const auto nested = [](std::size_t depth) {
    return "select * from t where " + std::string(depth, '(') + "a = 1" + std::string(depth, ')');
  };
  std::string chain = "delete from t where a = 1";
  for (int i = 0; i < 20'000; ++i) chain += (i % 2 ? " and b" : " or c") + std::to_string(i) + " = 1";
  for (const TShellForm form : {TShellForm::Classic, TShellForm::Modern}) {
    EXPECT_TRUE(SqlToMongo(nested(80), form).translated());
    for (const std::size_t depth : {200, 100'000}) EXPECT_FALSE(SqlToMongo(nested(depth), form).translated());
    EXPECT_TRUE(SqlToMongo(chain, form).translated()) << SqlToMongo(chain, form).message;
  }
}

}  // namespace

}  // namespace hollowmere

// The legacy shell, played by a script that notes what it is given.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "connectors/mongodb/shellcommandline.h"
#include "connectors/mongodb/shelloutput.h"
#include "connectors/mongodb/shellrunner.h"
#include "connectors/mongodb/shellstatements.h"
#include "connectors/mongodb/shelltask.h"
#include "connectors/mongodb/shelltexts.h"
#include "connectors/mongodb/sqlform.h"
#include "connectors/storeerror.h"
#include "json/json.h"
#include "support/scriptedprompt.h"
#include "support/tempfolder.h"

namespace hollowmere {

namespace {

constexpr char standIn[] = HOLLOWMERE_TESTS_DIR "/support/legacymongo";
constexpr char plainRecord[] = R"({"host":" db1 ","port":27018,"database":"shop"})";

class LegacyShell : public testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(base_ + "data");
    setenv("LEGACY_MONGO", notes_.file("").c_str(), 1);
    unsetenv("LEGACY_MONGO_VERSION");
    settings_.program = standIn;
    settings_.dataFolder = base_;
    settings_.timeoutMilliseconds = 20'000;
  }

  void plays(const std::string& output, const std::string& code = "0") {
    writeBytes(notes_.file("output"), output);
    writeBytes(notes_.file("code"), code);
  }
  TShellResult run(const std::string& command, const std::string& record = plainRecord) {
    TShellCommand asked = asked_;
    asked.command = command;
    return TShellRunner(settings_, dates_).run(record, asked);
  }
  [[nodiscard]] std::string seen(const std::string& name) const { return readBytes(notes_.file(name)); }
  [[nodiscard]] std::ptrdiff_t workFiles() const {
    const std::filesystem::directory_iterator content(base_ + "data");
    return std::distance(begin(content), end(content));
  }

  TTempFolder notes_;
  TTempFolder home_;
  std::string base_ = home_.file("base/");
  TShellSettings settings_;
  TDateTimeText dates_{"en_US"};
  TShellCommand asked_{"shop", {}, "primary", 20, 0};
};

TEST(ShellCommandLine, IsPutTogetherPieceByPiece) {
  const auto line = [](const std::string& record, const std::string& database = "shop") {
    return shellCommandLine("/opt/mongo 4/mongo", std::get<TShellLogin>(shellLogin(record)), database,
                            "/home/a b/", "run3.js", "out3.json");
  };
  const std::string real = R"( --quiet < "/home/a b//data/run3.js"  > "/home/a b/data/out3.json")";
  EXPECT_EQ(line(plainRecord), R"("/opt/mongo 4/mongo" db1:27018/shop)" + real);
  EXPECT_EQ(line(R"({"host":"h","user":"u","password":"p"})", ""),
            R"("/opt/mongo 4/mongo" h:27017/ --username "u" --password p)" + real);
  EXPECT_EQ(line(R"({"host":"h","user":"u","password":"p","authdb":"admin"})"),
            R"("/opt/mongo 4/mongo" h:27017/shop --username "u" --password p)" + real)
      << "no login database without a mechanism";
  EXPECT_EQ(line(R"({"host":"h","user":" u ","password":"p","mechanism":"SCRAM-SHA-1","authdb":"admin"})"),
            R"("/opt/mongo 4/mongo" h:27017/shop --username "u" --password p)"
            R"( --authenticationMechanism "SCRAM-SHA-1" --authenticationDatabase "admin")" +
                real);
  EXPECT_EQ(line(R"({"host":"h","user":"a\"$b","password":"p;rm -rf $HOME"})"),
            R"("/opt/mongo 4/mongo" h:27017/shop --username "a\"\$b" --password p\;rm\ -rf\ \$HOME)" + real);
  EXPECT_THROW(line(R"({"host":"h","user":"u","password":"a\nb"})"), std::runtime_error);
  EXPECT_THROW(line(R"({"host":"--eval"})"), std::runtime_error);
}

TEST_F(LegacyShell, GetsItsArgumentsAndItsInputByteByByte) {
  plays(
      "switched to db shop\n{ \"_id\" : ObjectId(\"507f1f77bcf86cd799439011\"), \"n\" : NumberLong(5) }\n"
      "{ \"_id\" : 2,\n\t\"l\" : [ ] }\n");
  asked_.readPreference = "secondary";
  const TShellResult result =
      run("db.c.find()", R"({"host":"h","port":"5","user":"u;id","password":"p $(id)'\"","mechanism":)"
                         R"("SCRAM-SHA-1","authdb":"admin"})");
  EXPECT_EQ(result.error, "");
  ASSERT_EQ(result.values.size(), 2U);
  EXPECT_EQ(toJson(result.values[0]), R"({"_id":"507f1f77bcf86cd799439011","n":5})");
  EXPECT_EQ(seen("arguments"),
            "h:5/shop\n--username\nu;id\n--password\np $(id)'\"\n--authenticationMechanism\n"
            "SCRAM-SHA-1\n--authenticationDatabase\nadmin\n--quiet\n");
  EXPECT_EQ(seen("input"),
            "use shop\nDBQuery.shellBatchSize = 20\ndb.getMongo().setReadPref('secondary')\ndb.c.find()\n");
  EXPECT_EQ(seen("umask"), "0077\n");
  EXPECT_EQ(workFiles(), 0);
}

TEST_F(LegacyShell, RecordsWithoutWhatItNeedsDoNotStartIt) {
  EXPECT_EQ(run("x", "{").error, "Unable to parse connection string.");
  EXPECT_EQ(run("x", R"({"user":"ann"})").error, "Unable to find MongoDB user password for the user ann");
  EXPECT_FALSE(std::filesystem::exists(notes_.file("input")));
}

TEST_F(LegacyShell, StaleFilesGoAndTheirNumberIsNotUsed) {
  for (const char* name : {"parse1.cmd", "out1.json", "out2.json"})
    writeBytes(base_ + "data/" + name, "stale");
  writeBytes(notes_.file("script"), "ls \"" + base_ +
                                        "data\" >\"$LEGACY_MONGO/files\"; "
                                        "stat -c %a \"" +
                                        base_ + "data/\"* >\"$LEGACY_MONGO/modes\"\n");
  plays("1\n");
  EXPECT_EQ(run("x").error, "");
  EXPECT_EQ(seen("files"), "out3.json\nparse3.cmd\nrun3.js\n");
  EXPECT_EQ(seen("modes"), "600\n600\n600\n");
  EXPECT_EQ(workFiles(), 0);
}

TEST_F(LegacyShell, TwoRunsAtOnceKeepApart) {
  writeBytes(notes_.file("script"), "sleep 0.5\n");
  plays("{ \"a\" : 1 }\n");
  TShellTask first(settings_, plainRecord, asked_, {});
  TShellTask second(settings_, plainRecord, asked_, {});
  while (!first.isOver() || !second.isOver()) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  for (const TShellTask* task : {&first, &second}) {
    EXPECT_EQ(task->result().error, "");
    EXPECT_EQ(task->result().values.size(), 1U);
  }
  EXPECT_EQ(workFiles(), 0);
}

TEST_F(LegacyShell, ALaterPageIsTheLastOne) {
  plays("20\n{ \"_id\" : 1 }\nType \"it\" for more\n{ \"_id\" : 2 }\nType \"it\" for more\n");
  asked_.page = 1;
  const TShellResult result = run("db.c.find()");
  EXPECT_TRUE(seen("input").ends_with("db.c.find()\nit\n"));
  ASSERT_EQ(result.values.size(), 1U);
  EXPECT_EQ(toJson(result.values[0]), "{\"_id\":2}");
  EXPECT_TRUE(result.more);
}

TEST_F(LegacyShell, FailuresAreToldWithTheirReason) {
  plays(
      "2020-01-01T00:00:00.000+0000 E QUERY    [thread1] Error: error: {\n\t\"ok\" : 0,\n\t\"errmsg\" : "
      "\"not authorized on shop\",\n\t\"code\" : 13\n} :\n_getErrorWithCode@src/mongo/shell/utils.js:25:13\n",
      "1");
  TShellResult result = run("x");
  EXPECT_EQ(result.error, "Error Code: 13\rError Message: not authorized on shop");
  EXPECT_TRUE(result.accessRefused);

  plays("", "5");
  EXPECT_EQ(run("x").error, "The MongoDB shell ended with exit code 5.");

  plays("WriteResult({ \"nInserted\" : 1 })\n");
  result = run("x");
  EXPECT_EQ(result.text, "WriteResult({ \"nInserted\" : 1 })");
  TShellRunner runner(settings_, dates_);
  for (const char* output : {"no list", "[ 1 ]", "{ }", "[ \"a\" ] [ ]"}) {
    plays(output);
    try {
      runner.collectionNames(plainRecord, "shop");
      ADD_FAILURE() << output;
    } catch (const TStoreError& error) {
      EXPECT_EQ(error.text(), shelltexts::badCollections);
    }
    EXPECT_EQ(runner.serverVersion(plainRecord, "shop"), "Unknown") << output;
  }
  plays("4.2.1\n");
  EXPECT_EQ(runner.serverVersion(plainRecord, "shop"), "4.2.1");
  plays("[\n\t{\n\t\t\"v\" : 2,\n\t\t\"name\" : \"_id_\"\n\t}\n]\n");
  EXPECT_EQ(runner.indexes(plainRecord, "shop", "odd-name").size(), 1U);
  EXPECT_TRUE(seen("input").ends_with("db.getCollection(\"odd-name\").getIndexes()\n"));
  EXPECT_EQ(runner.indexes(plainRecord, "shop", "c").size(), 1U);
  EXPECT_TRUE(seen("input").ends_with("\ndb.c.getIndexes()\n"));
  EXPECT_THROW(runner.collectionNames(plainRecord, "shop"), TStoreError);

  writeBytes(notes_.file("script"), "rm \"" + base_ + "data/\"out*\n");
  EXPECT_EQ(run("x").error, std::string(shelltexts::noResult) + base_ + "data/out1.json");
  EXPECT_EQ(workFiles(), 0);
}

TEST_F(LegacyShell, HangingAndFloodingShellsAreEnded) {
  writeBytes(notes_.file("script"), "trap '' TERM; sleep 30 & wait; sleep 30\n");
  settings_.timeoutMilliseconds = 1000;
  EXPECT_EQ(run("x").error, "The MongoDB shell did not end within 1 seconds.");
  settings_.timeoutMilliseconds = 20'000;
  writeBytes(notes_.file("script"), "yes\n");
  settings_.outputLimit = 1'000'000;
  EXPECT_EQ(run("x").error, "The MongoDB shell wrote more than 1000000 bytes. Narrow the query.");
  writeBytes(notes_.file("script"), "touch \"$LEGACY_MONGO/begun\"; sleep 30\n");
  TShellTask task(settings_, plainRecord, asked_, {});
  while (!std::filesystem::exists(notes_.file("begun")))
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  task.stop();
  while (!task.isOver()) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  EXPECT_EQ(task.result().error, "The operation was cancelled.");
  EXPECT_EQ(workFiles(), 0);
}

TEST_F(LegacyShell, ProgramsThatAreNoUsableShellAreNamed) {
  const auto fault = [&](const std::string& program) {
    settings_.program = program;
    return run("x").error;
  };
  const std::string start = "Unable to use the MongoDB shell ";
  EXPECT_EQ(fault("/no/mongo"), start + "/no/mongo: there is no such file.");
  EXPECT_EQ(fault("/etc"), start + "/etc: it is not a file.");
  const std::string text = notes_.file("text");
  writeBytes(text, "x");
  EXPECT_EQ(fault(text), start + text + ": it is not executable.");
  EXPECT_EQ(fault("/bin/true"), start + "/bin/true: it is no MongoDB shell.");
  setenv("LEGACY_MONGO_VERSION", "2.6.12", 1);
  EXPECT_EQ(fault(standIn), start + standIn + ": its version is 2.6.12, but 3.0 or later is needed.");
  unsetenv("LEGACY_MONGO_VERSION");
  settings_.dataFolder = "/proc/";
  EXPECT_EQ(fault(standIn).find("Unable to write file /proc/data/: "), 0U);
}

TEST(ShellLookup, AsksOnceAndKeepsTheChoice) {
  TScriptedPrompt prompt;
  std::string path = "/kept";
  EXPECT_TRUE(findShell(path, prompt, {}));
  path.clear();
  std::optional<std::string> answer;
  const TFileChoice choose = [&](const std::string& title, const std::string& filter) {
    EXPECT_EQ(title, "Find MongoDB Shell Executable");
    EXPECT_EQ(filter, "Mongo Shell Executable|mongo.exe");
    return answer;
  };
  const char* ask = "Please specify MongoDB shell executable file mongo.exe";
  prompt.expect(TPromptKind::Warning, ask);
  prompt.expect(TPromptKind::Error, "You must specify MongoDB shell executable file mongo.exe  Exiting...");
  EXPECT_FALSE(findShell(path, prompt, choose));
  answer = "/usr/bin/mongosh";
  prompt.expect(TPromptKind::Warning, ask);
  EXPECT_TRUE(findShell(path, prompt, choose));
  EXPECT_EQ(path, "/usr/bin/mongosh");
}

TEST(ShellOutput, ErrorsInDataAreData) {
  const TDateTimeText dates("en_US");
  const TShellResult result = readShellOutput(
      "2020 I CONTROL  [main] remark\nswitched to db x\n{ \"m\" : \"error: errmsg:\" }\n", dates);
  EXPECT_EQ(result.error, "");
  ASSERT_EQ(result.values.size(), 1U);
  EXPECT_EQ(readShellOutput("uncaught exception: SyntaxError: x", dates).error,
            "uncaught exception: SyntaxError: x");
  EXPECT_TRUE(readShellOutput("", dates).values.empty());
  EXPECT_EQ(withoutUseEcho("switched to db shop\n{ }\n"), "{ }");
}

TEST(ShellStatements, AreCutAsAShellReadsThem) {
  const auto cut = [](const std::string& text) {
    std::string out;
    for (const TShellStatement& each : splitStatements(text))
      out += std::to_string(static_cast<int>(each.kind)) + ":" + each.text + "|";
    return out;
  };
  EXPECT_EQ(cut("db.c.find({\n a: 1\n})\n  .limit(2)\ndb.d.count()"),
            "0:db.c.find({\n a: 1\n})\n  .limit(2)|0:db.d.count()|");
  EXPECT_EQ(cut("use shop; var x = ';'; x // end; here\n/* a;b */ x +\n1"),
            "2:shop|1:var x = ';'|0:x // end; here|0:x +\n1|");
  EXPECT_EQ(cut("db.c.find({a: /[;/]'/i}); a / 2; b"), "0:db.c.find({a: /[;/]'/i})|0:a / 2|0:b|");
  EXPECT_EQ(cut("if (x) {\n y;\n}\nelse { z }\n`a\n;b`"), "1:if (x) {\n y;\n}|1:else { z }|0:`a\n;b`|");
  EXPECT_EQ(cut(" ;\n// nothing\n"), "");
  EXPECT_EQ(cut("show dbs\nshow tables\nused"), "3:|4:|0:used|");
}

TEST(SqlForm, FollowsTheServerUnlessItIsFixed) {
  using enum TSqlFormChoice;
  for (const char* old : {"2.6.12", "3.6", "4.0.28", "4.1"})
    EXPECT_EQ(sqlFormFor(old, ByServer), TShellForm::Classic) << old;
  for (const char* today : {"4.2.0", "4.10", "5.0.1", "8", "Unknown", ""})
    EXPECT_EQ(sqlFormFor(today, ByServer), TShellForm::Modern) << today;
  EXPECT_EQ(sqlFormFor("8.0", Classic), TShellForm::Classic);
  EXPECT_EQ(sqlFormFor("3.0", Modern), TShellForm::Modern);
  EXPECT_TRUE(isSqlStatement("SELECT a\nFROM c"));
  EXPECT_TRUE(isSqlStatement("update c set a = 1"));
  EXPECT_FALSE(isSqlStatement("db.c.find({from: 'select'})"));
  EXPECT_EQ(queryFault("INSERT INTO c VALUES (1)"), "Parsing of INSERT SQL statement is not supported.");
  EXPECT_EQ(queryFault("db.c.find().toArray()"), "toArray() cursor method is not supported.");
  EXPECT_EQ(queryFault("db.c.insertOne({into: 1})"), "");
}

}  // namespace

}  // namespace hollowmere

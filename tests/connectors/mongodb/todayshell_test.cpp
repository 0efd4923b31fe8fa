// Today's shell itself, against a server.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>
#include <thread>

#include "connectors/mongodb/shellrunner.h"
#include "connectors/mongodb/shelltask.h"
#include "json/json.h"
#include "support/localserver.h"
#include "support/tempfolder.h"

namespace hollowmere {

namespace {

std::string shellPath() {
  const char* servers = std::getenv("HOLLOWMERE_SERVERS");
  const char* home = std::getenv("HOME");
  const std::string folder = servers ? servers : std::string(home ? home : "") + "/.cache/hollowmere-servers";
  return folder + "/mongodb/tools/mongosh";
}

class TodayShell : public testing::Test {
 protected:
  static const TLocalServer& server() {
    static const TLocalServer started("--auth");
    return started;
  }

  void SetUp() override {
    if (!std::filesystem::exists(shellPath()))
      GTEST_SKIP() << "mongosh is not here; ./dev servers shell mongodb installs it";
    std::filesystem::create_directories(base_ + "data");
    settings_.program = shellPath();
    settings_.dataFolder = base_;
    settings_.timeoutMilliseconds = 60'000;
    asked_.database = "test";
    asked_.pageSize = 2;
  }

  [[nodiscard]] static std::string record(const std::string& password = "secret") {
    return toJson(TObject{{"host", "127.0.0.1"},
                          {"port", static_cast<int>(server().port())},
                          {"database", "test"},
                          {"user", "root"},
                          {"password", password},
                          {"mechanism", "SCRAM-SHA-256"},
                          {"authdb", "admin"}});
  }
  TShellResult run(const std::string& command) {
    asked_.command = command;
    return runner_.run(record(), asked_);
  }
  static std::string joined(const TShellResult& result) {
    std::string out = result.error;
    for (const TValue& value : result.values) out += toJson(value) + "|";
    return out;
  }

  TTempFolder home_;
  std::string base_ = home_.file("base/");
  TShellSettings settings_{shellPath(), base_, 60'000, 64U << 20U, nullptr, {}};
  TDateTimeText dates_;
  TShellRunner runner_{settings_, dates_};
  TShellCommand asked_;
};

TEST_F(TodayShell, GivesValuesWithTheirKindsPageByPage) {
  EXPECT_EQ(joined(run(R"(db.kinds.deleteMany({}); db.kinds.insertOne({_id: 1, i: 5, l: Long("5"), d: 1.5,
  t: new Date(5), o: ObjectId("507f1f77bcf86cd799439011"), b: BinData(4, "AAE="), m: NumberDecimal("1.50"),
  r: /a"b/i, n: null, s: "it's \"so\"\nand so", e: [], k: {"$odd": {a: 1}}}).acknowledged)")),
            "{\"acknowledged\":true,\"deletedCount\":0}|true|");
  const TShellResult one = run("db.kinds.find()");
  ASSERT_EQ(one.values.size(), 1U) << one.error;
  EXPECT_FALSE(one.more);
  const TObject& row = one.values[0].asObject();
  EXPECT_EQ(row.find("i")->subtype(), 0);
  EXPECT_EQ(row.find("l")->subtype(), 1);
  EXPECT_TRUE(row.find("t")->is(TKind::DateTime));
  EXPECT_TRUE(row.find("o")->is(TKind::ObjectId));
  EXPECT_EQ(row.find("b")->subtype(), 4);
  EXPECT_TRUE(row.find("m")->is(TKind::Decimal));
  EXPECT_EQ(toJson(one.values[0]),
            R"({"_id":1,"i":5,"l":5,"d":1.5,"t":"1970-01-01T00:00:00.005Z","o":"507f1f77bcf86cd799439011",)"
            R"("b":"&base64;AAE=","m":1.50,"r":"/a\"b/i","n":null,"s":"it's \"so\"\nand so","e":[],)"
            R"("k":{"$odd":{"a":1}}})");
  run("db.pages.deleteMany({}); db.pages.insertMany([{_id: 1}, {_id: 2}, {_id: 3}])");
  TShellResult page = run("db.pages.find().sort({_id: 1})");
  EXPECT_EQ(joined(page), R"({"_id":1}|{"_id":2}|)");
  EXPECT_TRUE(page.more);
  asked_.page = 1;
  page = run("db.pages.find().sort({_id: 1})");
  EXPECT_EQ(joined(page), R"({"_id":3}|)");
  EXPECT_FALSE(page.more);
}

TEST_F(TodayShell, RunsWhatAShellIsGivenLineByLine) {
  const TShellResult result =
      run("use other\nvar x = {a: 1};\nx.a + 1 // two\nprint('#R said')\nif (x) {\n"
          "  print('yes')\n}\ndb.getName()\nfor (let i = 0; i < 2; ++i) print(i)");
  EXPECT_EQ(joined(result), "2|\"other\"|");
  EXPECT_EQ(result.text, "#R said\nyes\n0\n1");
  run("db.pages.insertOne({_id: 9})");
  EXPECT_EQ(runner_.collectionNames(record(), "test").empty(), false);
  EXPECT_EQ(runner_.indexes(record(), "test", "pages").size(), 1U);
  EXPECT_EQ(runner_.serverVersion(record(), "test").substr(0, 2), "8.");
}

TEST_F(TodayShell, TellsErrorsFromResults) {
  const TShellResult refused = run("1; db.runCommand({nosuch: 1}); 2");
  EXPECT_EQ(refused.values.size(), 1U);
  EXPECT_EQ(refused.error, "Error Code: 59\rError Message: no such command: 'nosuch'");
  EXPECT_EQ(run("throw new Error('mine')").error, "mine");
  const TShellResult syntax = run("db.c.find((");
  EXPECT_EQ(syntax.error.find("SyntaxError: "), 0U) << syntax.error;
  EXPECT_EQ(syntax.error.find('\n'), std::string::npos) << "nothing of the script";
  asked_.command = "1";
  const TShellResult login = runner_.run(record("wrong secret"), asked_);
  EXPECT_NE(login.error, "");
  EXPECT_EQ(login.error.find("wrong"), std::string::npos) << login.error;
}

/// The arguments and environments of all processes that now run.
std::string everyCommandLine() {
  std::string all;
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    const std::string name = entry.path().filename().string();
    if (name.find_first_not_of("0123456789") != std::string::npos) continue;
    all += readBytes(entry.path() / "cmdline");
  }
  return all;
}

TEST_F(TodayShell, LeavesNoTraceAndEndsWhenItIsStopped) {
  const std::string password = "pw-" + std::to_string(getpid()) + "-word";
  asked_.command = "while (true) { sleep(50) }";
  TShellTask task(settings_, record("secret"), asked_, {});
  TShellTask other(settings_, record(password), asked_, {});
  std::set<unsigned> modes;
  for (int i = 0; i < 100 && !other.isOver(); ++i) {
    EXPECT_EQ(everyCommandLine().find(password), std::string::npos);
    for (const auto& entry : std::filesystem::directory_iterator(base_ + "data"))
      modes.insert(permissionsOf(entry.path()));
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  EXPECT_EQ(modes, std::set<unsigned>{0600U});
  task.stop();
  const auto start = std::chrono::steady_clock::now();
  while (!task.isOver()) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
  EXPECT_EQ(task.result().error, "The operation was cancelled.");
  other.stop();
  while (!other.isOver()) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  EXPECT_TRUE(std::filesystem::is_empty(base_ + "data"));
}

}  // namespace

}  // namespace hollowmere

#include <gtest/gtest.h>

#include <csignal>
#include <thread>

#include "app/program.h"
#include "json/json.h"
#include "project/projectdocument.h"
#include "support/localserver.h"
#include "support/mongowire/standin.h"

namespace hollowmere {

namespace {

using mongowire::TMongoStandIn;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr char secret[] = "gh0st-word";

class Programs : public testing::Test {
 protected:
  TTempFolder folder;
  TMongoStandIn server;
  TProject project;
  std::string projectFile = folder.file("trial.hmp");

  /// MongoDB to a file, two rows.
  void SetUp() override {
    server.fillJson("shop", "rows", {R"({"_id":1,"name":"Ann \"A\""})", R"({"_id":2,"name":"Bob"})"});
    project.projectName = "Trial";
    project.ignoreNulls = true;
    project.logFile = folder.file("log.txt");
    project.discFile = folder.file("discard.txt");
    project.source = {"MongoDB", TObject{{"dbtype", "MongoDB"},
                                         {"host", "127.0.0.1"},
                                         {"port", static_cast<int>(server.port())},
                                         {"database", "shop"},
                                         {"user", ""},
                                         {"password", secret}}};
    project.target = {"JSON File", folder.file("out.json")};
    project.dataSources = {{"rows", TObject{{"database", "shop"}, {"collection", "rows"}, {"query", ""}}, 0}};
    project.dataTargets = {{"file", "out", {}}};
    project.mapping = {
        {"file", "rows", "String", {{"id", "_id", "Number", {}}, {"who", "name", "String", {}}}}};
  }

  struct TEnd {
    std::optional<int> code;
    std::string out;
    std::string err;
  };

  TEnd run(const std::string& program, const std::vector<std::string>& arguments,
           const std::string& input = {}) {
    TProgramRun process(folder, program, arguments, input);
    const auto code = process.wait();
    return {code, process.out(), process.err()};
  }
  TEnd cli(const std::vector<std::string>& arguments, const std::string& input = {}) {
    return run(HOLLOWMERE_CLI, arguments, input);
  }

  void seal() {
    const TEnd sealed = cli({"seal", "-", projectFile}, toJson(toDocument(project)));
    ASSERT_EQ(sealed.code, 0) << sealed.err;
    EXPECT_EQ(sealed.out + sealed.err, "");
  }
  [[nodiscard]] std::string log() const { return readBytes(project.logFile); }
  [[nodiscard]] bool logged(const std::string& text) const { return log().find(text) != std::string::npos; }
};

constexpr char loadedFile[] = "{\"id\":1.0,\"who\":\"Ann &quot;A&quot;\"}\r{\"id\":2.0,\"who\":\"Bob\"}\r";

#ifdef HOLLOWMERE_PROGRAM

TEST_F(Programs, BatchModeRunsAProject) {
  seal();
  for (const auto& arguments :
       {std::vector<std::string>{"batchmode", projectFile}, {projectFile, "BATCHMODE"}}) {
    writeBytes(folder.file("out.json"), "old");
    const auto start = steady_clock::now();
    const TEnd end = run(HOLLOWMERE_PROGRAM, arguments);
    EXPECT_EQ(end.code, 0) << end.err;
    EXPECT_EQ(end.out, "");
    EXPECT_EQ(readBytes(folder.file("out.json")), loadedFile);
    EXPECT_TRUE(log().ends_with("Processing successfully completed with exit code 0\n"));
    EXPECT_GE(steady_clock::now() - start, milliseconds(1000)) << "a second stands behind the summary";
  }
}

TEST_F(Programs, BatchModeRefusesWhatItCannotRun) {
  const TEnd missing = run(HOLLOWMERE_PROGRAM, {"batchmode", projectFile});
  EXPECT_EQ(missing.code, 1);
  EXPECT_EQ(missing.err, "hollowmere: Unable to find file " + projectFile + "\n");
  writeBytes(projectFile, "no project at all");
  const TEnd invalid = run(HOLLOWMERE_PROGRAM, {"batchmode", projectFile});
  EXPECT_EQ(invalid.code, 1);
  EXPECT_TRUE(invalid.err.starts_with("hollowmere: Invalid project file.")) << invalid.err;
  project.mapping.clear();
  seal();
  const TEnd unmapped = run(HOLLOWMERE_PROGRAM, {"batchmode", projectFile});
  EXPECT_EQ(unmapped.code, 1);
  EXPECT_EQ(unmapped.err, "hollowmere: No data mapping defined.\n");
  EXPECT_EQ(log(),
            "Batch execution error for project Trial: No data mapping defined.\n"
            "Terminating processing with exit code 1\n");
}

#endif

TEST_F(Programs, RunTellsItsTotals) {
  seal();
  const TEnd plain = cli({"run", projectFile});
  EXPECT_EQ(plain.code, 0) << plain.err;
  EXPECT_EQ(plain.out, "");
  EXPECT_NE(plain.err.find("rows -> file: 2 loaded, 0 discarded, 0 skipped\n2 processed in "),
            std::string::npos);
  const TEnd json = cli(
      {"run", "--json", "--quiet", "--set", "vgGeneralTargetConn=" + folder.file("other.json"), projectFile});
  EXPECT_EQ(json.code, 0);
  EXPECT_EQ(json.err, "");
  const TValue result = parseJson(json.out);
  EXPECT_EQ(*result.asObject().find("loaded"), TValue(2));
  EXPECT_EQ(*result.asObject().find("processed"), TValue(2));
  EXPECT_EQ(
      toJson(*result.asObject().find("mappings")),
      R"([{"source":"rows","target":"file","loaded":2,"discarded":0,"skipped":0,"processed":2,"complete":true}])");
  EXPECT_EQ(readBytes(folder.file("other.json")), loadedFile);
}

TEST_F(Programs, CheckAndPreviewChangeNothing) {
  seal();
  EXPECT_EQ(cli({"check", projectFile}).code, 0);
  const TEnd preview = cli({"preview", "-n", "1", projectFile});
  EXPECT_EQ(preview.code, 0);
  EXPECT_EQ(preview.err, "");
  EXPECT_EQ(parseJson(preview.out).asObject().find("id")->asDouble(), 1);
  EXPECT_FALSE(std::filesystem::exists(folder.file("out.json")));
  server.stop();
  const TEnd gone = cli({"check", projectFile});
  EXPECT_EQ(gone.code, 1);
  EXPECT_NE(gone.err.find("Unable to connect to source database: "), std::string::npos) << gone.err;
  const TEnd unread = cli({"preview", projectFile});
  EXPECT_EQ(unread.code, 1);
  EXPECT_EQ(unread.out, "");
  const TEnd refused = cli({"run", "--json", projectFile});
  EXPECT_EQ(refused.code, 1);
  EXPECT_EQ(refused.out, "");
}

TEST_F(Programs, ShowHidesSecrets) {
  seal();
  EXPECT_EQ(readBytes(projectFile).find("Trial"), std::string::npos) << "the file is enciphered";
  const TEnd masked = cli({"show", projectFile});
  EXPECT_EQ(masked.code, 0);
  EXPECT_EQ(masked.out.find(secret), std::string::npos);
  EXPECT_NE(masked.out.find("\"password\": \"********\""), std::string::npos);
  const TEnd open = cli({"show", "--secrets", projectFile});
  EXPECT_EQ(toJson(parseJson(open.out)), toJson(toDocument(project)));
  // What is shown can be sealed again, but not with its secrets hidden.
  const std::string other = folder.file("other.hmp");
  const TEnd lost = cli({"seal", "-", other}, masked.out);
  EXPECT_EQ(lost.code, 1);
  EXPECT_NE(lost.err.find("show --secrets"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(other));
  EXPECT_EQ(cli({"seal", "-", other}, open.out).code, 0);
  EXPECT_EQ(cli({"show", "--secrets", other}).out, open.out);
}

TEST_F(Programs, SealNamesTheMemberThatIsWrong) {
  seal();
  const std::string before = readBytes(projectFile);
  TObject document = toDocument(project);
  document.find("datasourcelist")->asList()[0].asObject().set("name", 5);
  const TEnd wrong = cli({"seal", "-", projectFile}, toJson(document));
  EXPECT_EQ(wrong.code, 1);
  EXPECT_NE(wrong.err.find("Invalid project file. datasourcelist[0].name"), std::string::npos) << wrong.err;
  const TEnd noJson = cli({"seal", "-", projectFile}, "{\"a\":");
  EXPECT_EQ(noJson.code, 1);
  EXPECT_NE(noJson.err.find("Standard input is no JSON text: "), std::string::npos) << noJson.err;
  EXPECT_EQ(readBytes(projectFile), before);
}

TEST_F(Programs, NewMakesADocumentThatCanBeSealed) {
  const TEnd fresh = cli({"new"});
  EXPECT_EQ(fresh.code, 0);
  EXPECT_EQ(cli({"seal", "-", projectFile}, fresh.out).code, 0);
  const TEnd run = cli({"run", projectFile});
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.err, "hollowmere-cli: Source database type not defined.\n");
}

TEST_F(Programs, KnowsItsCommandLine) {
  EXPECT_EQ(cli({"--version"}).out, "hollowmere-cli " HOLLOWMERE_VERSION "\n");
  for (const auto& arguments : {std::vector<std::string>{"--help"}, {"run", "--help"}, {"-h"}}) {
    const TEnd help = cli(arguments);
    EXPECT_EQ(help.code, 0);
    EXPECT_TRUE(help.out.starts_with("hollowmere-cli ")) << help.out;
  }
  for (const auto& arguments : {std::vector<std::string>{},
                                {"walk"},
                                {"run"},
                                {"run", "a", "b"},
                                {"run", "--fast", "a"},
                                {"preview", "-n", "0", "a"},
                                {"run", "a", "--set"}}) {
    const TEnd wrong = cli(arguments);
    EXPECT_EQ(wrong.code, 2);
    EXPECT_EQ(wrong.out, "");
    EXPECT_TRUE(wrong.err.starts_with("hollowmere-cli: ")) << wrong.err;
  }
}

TEST_F(Programs, SqlBecomesShellText) {
  const TEnd classic = cli({"sql2mongo"}, "select a from t\r\nwhere b = 'x' limit 10, 20");
  EXPECT_EQ(classic.out, "db.t.find( \r{\"b\":\"x\"},\r{\"a\":1,\"_id\":0}\r).limit(10).skip(20);\n");
  EXPECT_EQ(classic.code, 0);
  EXPECT_EQ(cli({"sql2mongo", "--modern"}, "delete from t").out, "db.t.deleteMany({});\n");
  const TEnd refused = cli({"sql2mongo"}, "select a from t where (a = 1");
  EXPECT_EQ(refused.out, "");
  EXPECT_EQ(refused.err, "Invalid WHERE clause.\n");
  EXPECT_EQ(refused.code, 1);
  EXPECT_EQ(cli({"sql2mongo", "--modern"}, "delete from t\nlimit 5").err,
            "line 2, column 7: LIMIT cannot stand in a DELETE\n");
}

TEST_F(Programs, ASignalStopsARunAgainstASilentServer) {
  project.skipCount = true;
  seal();
  struct TPlace {
    const char* command;
    std::uint64_t nth;
    bool running;
  };
  for (const TPlace& place : {TPlace{"find", 1, true}, TPlace{"ping", 1, false}, TPlace{"hello", 1, false}}) {
    SCOPED_TRACE(place.command);
    writeBytes(project.logFile, {});
    server.faults().clear();
    server.faults().onCommand(place.command, mongowire::TFaultScript::kEvery, mongowire::fault::silence());
    const std::size_t before = server.requestCount(place.command);
    TProgramRun process(folder, HOLLOWMERE_CLI, {"run", projectFile});
    while (server.requestCount(place.command) == before) std::this_thread::sleep_for(milliseconds(1));
    std::this_thread::sleep_for(milliseconds(100));
    const auto start = steady_clock::now();
    process.signal(SIGINT);
    const auto code = process.wait(milliseconds(5000));
    EXPECT_LT(steady_clock::now() - start, milliseconds(2000));
    ASSERT_TRUE(code) << "does not end";
    EXPECT_EQ(*code, 130) << process.err();
    if (!place.running) continue;
    EXPECT_TRUE(logged("Load operation cancelled at "));
    EXPECT_TRUE(logged("Total processed rows/documents 0\n"));
    EXPECT_NE(process.err().find("rows -> file: 0 loaded"), std::string::npos) << process.err();
  }
}

TEST_F(Programs, ASecondSignalEndsAtOnce) {
  project.skipCount = true;
  seal();
  server.faults().onCommand("find", mongowire::TFaultScript::kEvery, mongowire::fault::silence());
  TProgramRun process(folder, HOLLOWMERE_CLI, {"run", projectFile});
  while (server.requestCount("find") == 0) std::this_thread::sleep_for(milliseconds(1));
  process.signal(SIGINT);
  std::this_thread::sleep_for(milliseconds(50));
  const auto start = steady_clock::now();
  process.signal(SIGTERM);
  EXPECT_EQ(process.wait(milliseconds(5000)), 130);
  EXPECT_LT(steady_clock::now() - start, milliseconds(500));
}

TEST_F(Programs, MongoActionsWorkFromTheCommandLine) {
  const std::string address = "127.0.0.1:" + std::to_string(server.port()) + "/shop";
  EXPECT_EQ(cli({"mongo", address, "databases"}).out, "\"shop\"\n");
  EXPECT_EQ(cli({"mongo", address, "find", "rows", "{\"_id\":2}"}).out, "{\"_id\":2,\"name\":\"Bob\"}\n");
  const TEnd refused = cli({"mongo", address, "command", "{\"group\":1}"});
  EXPECT_EQ(refused.code, 1);
  EXPECT_NE(refused.err.find("use aggregate with the stage $group instead."), std::string::npos);
  server.fillJson("shop", "fs.files", {R"({"_id":1,"filename":"first","length":0,"chunkSize":261120})"});
  writeBytes(folder.file("a.txt"), "abc");
  EXPECT_EQ(cli({"mongo", address, "gridfs", "put", folder.file("a.txt"), "b"}).code, 0);
  EXPECT_EQ(cli({"mongo", address, "gridfs", "get", "b", folder.file("back")}).code, 0);
  EXPECT_EQ(readBytes(folder.file("back")), "abc");
  // A record in a file, so that no password stands in an argument.
  writeBytes(folder.file("record"), toJson(project.source.connection));
  EXPECT_EQ(cli({"mongo", folder.file("record"), "copy", "rows", address, "rows2"}).code, 0);
  EXPECT_EQ(server.documents("shop", "rows2").size(), 2U);
  for (const auto& wrong : std::vector<std::vector<std::string>>{{"mongo", address},
                                                                 {"mongo", address, "nosuch"},
                                                                 {"mongo", address, "find"},
                                                                 {"mongo", address, "run", "x"}})
    EXPECT_EQ(cli(wrong).code, 2) << wrong.back();
}

/// A real one keeps silent when it is asked with frames.
TEST_F(Programs, AnHBaseWithoutFramesIsNamedByTheCheck) {
  const TLocalServer hbase("--unframed", "hbase");
  const int port = hbase.port();
  project.source = {"HBase", TObject{{"dbtype", "HBase"}, {"host", "127.0.0.1"}, {"port", port}}};
  project.dataSources[0].definition = TObject{{"table", "rows"}, {"query", ""}};
  seal();
  const auto start = steady_clock::now();
  const TEnd check = cli({"check", projectFile});
  EXPECT_LT(steady_clock::now() - start, milliseconds(10000));
  EXPECT_EQ(check.code, 1);
  EXPECT_EQ(check.err,
            "hollowmere-cli: Unable to connect to source database: 127.0.0.1:" + std::to_string(port) +
                " answers without frames; the Thrift server must be started with framed transport (-f).\n");
}

}  // namespace

}  // namespace hollowmere

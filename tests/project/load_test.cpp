// Whole runs: the complete log, the discard file, the totals.
#include <cstdlib>
#include <sstream>

#include "project/loadbench.h"

namespace hollowmere {

namespace {

/// Lines of one thread stand together behind those of the run: how threads take turns is chance.
std::string byThread(const std::string& log) {
  std::vector<std::string> parts(10);
  std::istringstream lines(log);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t label = line.find("<time>: Thread#");
    const std::size_t part = label == 0 ? static_cast<std::size_t>(line[15] - '0') : 0;
    parts[part] += line + '\n';
  }
  std::string together;
  for (const std::string& part : parts) together += part;
  return together;
}

/// Compares with tests/cases/load/NAME; HOLLOWMERE_WRITE_CASES=1 writes it anew, to be read before it is
/// kept.
void expectCase(const std::string& name, const std::string& actual) {
  const std::string file = HOLLOWMERE_TESTS_DIR "/cases/load/" + name;
  if (std::getenv("HOLLOWMERE_WRITE_CASES")) writeBytes(file, actual);
  EXPECT_EQ(actual, readBytes(file)) << name;
}

TEST(Load, CountsLogsAndDiscards) {
  TLoadBench bench;
  bench.map("rows");
  bench.map("more");
  bench.project.bulkInsert = 3;
  bench.server->fillNumbered("rows", 9);
  bench.server->fill("rows", {TObject{{"_id", "ten"}, {"name", "say \"ten\""}}});
  bench.server->fillNumbered("more", 2);
  bench.server->faults.unreadableRows = {3};
  bench.server->faults.refusedDocuments = {2, 7, 8};
  EXPECT_EQ(bench.run(), 0);
  expectCase("mixed.log", bench.log());
  EXPECT_EQ(bench.discards(),
            "{\"_id\":3,\"name\":\"row 3\"}\n"
            "{\"_id\":2.0,\"name\":\"row 2\"}\n"
            "{\"_id\":\"ten\",\"name\":\"say &quot;ten&quot;\"}\n"
            "{\"_id\":8.0,\"name\":\"row 8\"}\n"
            "{\"_id\":9.0,\"name\":\"row 9\"}\n");
  EXPECT_EQ(bench.counts(), (TLoadCounts{7, 3, 2}));
  EXPECT_EQ(bench.server->documents("out-rows").size(), 5U);
  EXPECT_EQ(bench.server->documents("out-more").size(), 2U);
  EXPECT_EQ(bench.folder.entries(), 2) << "nothing else is written";
}

TEST(Load, ThreeThreadsShareTenRows) {
  TLoadBench bench;
  bench.map("rows");
  bench.project.degree = 3;
  bench.server->fillNumbered("rows", 10);
  EXPECT_EQ(bench.run(), 0);
  expectCase("shares.log", byThread(bench.log()));
  EXPECT_EQ(bench.server->documents("out-rows").size(), 10U);
  EXPECT_EQ(bench.discards(), "");
}

TEST(Load, ReadsAFileAndWritesOne) {
  TLoadBench bench;
  bench.map("rows");
  bench.sourceFile("{\"_id\":\"1\",\"name\":\"a \\\"b\\\"\"}\r\n\r\n{\"_id\":2,\r{\"_id\":3,\"x\":1}");
  EXPECT_EQ(bench.run(), 0);
  expectCase("file-source.log", bench.log());
  EXPECT_EQ(bench.discards(), "{\"_id\":2,\n");
  EXPECT_EQ(bench.server->documents("out-rows").size(), 2U);

  TLoadBench other;
  other.map("rows");
  other.targetFile();
  other.project.skipCount = true;
  other.server->fill("rows",
                     {TObject{{"_id", 1}, {"name", "a \"b\""}}, TObject{{"_id", 2}, {"name", nullptr}}});
  EXPECT_EQ(other.run(), 0);
  expectCase("file-target.log", other.log());
  EXPECT_EQ(readBytes(other.folder.file("out.json")),
            "{\"_id\":1.0,\"name\":\"a &quot;b&quot;\"}\r{\"_id\":2.0}\r");
}

TEST(Load, SourcesThatCannotBeLoaded) {
  TLoadBench bench;
  bench.map("empty");
  bench.map("few");
  bench.map("never");
  bench.project.degree = 3;
  bench.server->fillNumbered("few", 2);
  bench.server->fillNumbered("never", 5);
  EXPECT_EQ(bench.run(), 0);
  expectCase("refused-sources.log", byThread(bench.log()));
  EXPECT_EQ(bench.counts(), TLoadCounts());
}

TEST(Load, EveryRowDiscardedIsStillAnEnd) {
  TLoadBench bench;
  bench.map("rows");
  bench.server->fillNumbered("rows", 2);
  bench.server->faults.refuseAll = true;
  EXPECT_EQ(bench.run(), 0);
  expectCase("all-discarded.log", bench.log());
  EXPECT_EQ(bench.discards(), "{\"_id\":1.0,\"name\":\"row 1\"}\n{\"_id\":2.0,\"name\":\"row 2\"}\n");
}

TEST(Load, NullsAreKeptWhereTheProjectSaysSo) {
  for (const bool ignore : {true, false}) {
    TLoadBench bench;
    bench.map("rows");
    bench.project.ignoreNulls = ignore;
    bench.server->fill("rows", {TObject{{"_id", 1}, {"name", nullptr}}});
    bench.run();
    EXPECT_EQ(toJson(bench.server->documents("out-rows").at(0)),
              ignore ? R"({"_id":1.0})" : R"({"_id":1.0,"name":null})");
  }
}

TEST(Load, AppendsToItsFiles) {
  TLoadBench bench;
  bench.map("rows");
  bench.server->fillNumbered("rows", 1);
  bench.server->faults.refuseAll = true;
  writeBytes(bench.project.logFile, "before\n");
  writeBytes(bench.project.discFile, "before\n");
  bench.run();
  EXPECT_TRUE(bench.log().starts_with("before\nInitializing...\n"));
  EXPECT_EQ(bench.discards(), "before\n{\"_id\":1.0,\"name\":\"row 1\"}\n");
}

}  // namespace

}  // namespace hollowmere

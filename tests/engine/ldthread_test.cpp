#include "engine/ldthread.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <new>
#include <thread>

#include "connectors/storeregistry.h"
#include "support/testclock.h"
#include "support/toystore.h"

namespace hollowmere {

namespace {

std::size_t lineCount(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
}

/// One thread between two toy stores.
class TBench : public TLoadHost {
 public:
  TBench() {
    stores.add(makeToyConnector(server));
    config.label = "T";
    config.sourceType = config.targetType = "Toy";
    config.sourceConnection = config.targetConnection = TObject{{"host", "toy"}};
    config.counted = false;
    map("rows");
  }

  void map(const std::string& source) {
    config.dataSources.push_back(toySource(source, source));
    config.dataTargets.push_back({"out-" + source, "out-" + source, {}});
    config.mappings.push_back(
        {"out-" + source, source, "String", {{"_id", "_id", "Number", {}}, {"name", "text", "String", {}}}});
  }

  void run() {
    thread.emplace(config, stores, *this, mainThread, clock, dates);
    thread->execute();
  }

  /// As run() on a thread of its own, with a stop as soon as it is due.
  void runUntil(const std::function<bool()>& due) {
    thread.emplace(config, stores, static_cast<TLoadHost&>(*this), mainThread, clock, dates);
    std::jthread body([&] { thread->execute(); });
    while (!due()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    thread->stop();
  }

  /// The log without times and label.
  [[nodiscard]] std::string messages() const {
    std::string text;
    for (std::size_t at = 0; at < logs.size();) {
      const std::size_t end = std::min(logs.find('\n', at), logs.size());
      const std::size_t label = logs.find(": T: ", at);
      text += logs.substr(label < end ? label + 5 : at, end - (label < end ? label + 5 : at)) + '\n';
      at = end + 1;
    }
    return text;
  }
  [[nodiscard]] bool says(const std::string& text) const {
    return messages().find(text) != std::string::npos;
  }

  void log(const std::string& lines) override {
    logs += lines + '\n';
    logLines.push_back(lineCount(lines));
    ++handedOver;
  }
  void disc(const std::string& lines) override {
    discs += lines + '\n';
    discLines.push_back(lineCount(lines));
  }
  void addTotals(std::size_t mapping, const TLoadCounts& counts, bool complete) override {
    totals.resize(std::max(totals.size(), mapping + 1));
    totals[mapping] += counts;
    if (complete) completed.push_back(mapping);
  }

  std::shared_ptr<TToyServer> server = std::make_shared<TToyServer>();
  TStoreRegistry stores;
  TLdConfig config;
  TInlineMainThread mainThread;
  TTestClock clock;
  TDateTimeText dates{"C"};
  std::optional<TLdThread> thread;
  std::string logs;
  std::string discs;
  std::vector<std::size_t> logLines;
  std::atomic<int> handedOver = 0;  ///< times, of the log
  std::vector<std::size_t> discLines;
  std::vector<TLoadCounts> totals;
  std::vector<std::size_t> completed;
};

TEST(LdThread, WithoutALabelOnlyDiscardsAreWritten) {
  TBench bench;
  bench.config.label.clear();
  bench.server->fillNumbered("rows", 3);
  bench.server->faults.refusedDocuments = {2};
  bench.run();
  EXPECT_EQ(bench.logs, "");
  EXPECT_EQ(bench.discs, "{\"_id\":2.0}\n");
  EXPECT_EQ(bench.thread->counts(), (TLoadCounts{2, 1, 0}));
}

TEST(LdThread, HandsLinesOverInBatches) {
  TBench bench;
  bench.server->fillNumbered("rows", 2500);
  bench.server->faults.refuseAll = true;
  bench.run();
  // The 1001st line of either queue takes both along; a log line stands before its discarded text.
  EXPECT_EQ(bench.discLines, (std::vector<std::size_t>{1000, 1001, 499}));
  ASSERT_GE(bench.logLines.size(), 5U);
  EXPECT_EQ(bench.logLines[2], 1001U);
  EXPECT_EQ(bench.thread->counts(), (TLoadCounts{0, 2500, 0}));
}

TEST(LdThread, LogsTheStartOfALongRowAndDiscardsAllOfIt) {
  TBench bench;
  std::string text;
  for (int i = 0; i < 2500; ++i) text += "\xC3\xA9";
  bench.server->fill("rows", {TObject{{"_id", "no number"}, {"text", text}}});
  bench.run();
  const std::string row = "{\"_id\":\"no number\",\"text\":\"" + text + "\"}";
  std::string shown = row.substr(0, row.find(text));
  shown += text.substr(0, 2 * (2000 - shown.size()));
  EXPECT_TRUE(
      bench.says("Data retrieval error occurred: Unable to convert the value of \"_id\" to a number: "
                 "\"no number\"\nError document/row:\n"
                 "---------------------------------------------------\n" +
                 shown + "...\n---------------------------------------------------\nFinished loading "));
  EXPECT_EQ(bench.discs, row + "\n");
  EXPECT_EQ(bench.thread->counts(), (TLoadCounts{0, 0, 1}));
}

TEST(LdThread, OutcomesThatComeLateAreCountedOnce) {
  for (const std::int64_t bulk : {0, 3, 100}) {
    SCOPED_TRACE(bulk);
    TBench bench;
    bench.config.bulkSize = bulk;
    bench.server->fillNumbered("rows", 10);
    bench.server->faults.lateOutcomes = true;
    bench.server->faults.refusedDocuments = {1, 6, 9};
    bench.server->faults.unreadableRows = {4};
    bench.run();
    ASSERT_EQ(bench.totals, (std::vector<TLoadCounts>{{6, 3, 1}}));
    EXPECT_EQ(bench.thread->counts(), bench.totals[0]);
    EXPECT_EQ(bench.server->documents("out-rows").size(), 6U);
  }
}

TEST(LdThread, AnEmptySourceIsPassedAndAnyOtherFaultEndsTheLoop) {
  TBench bench;
  bench.map("second");
  bench.map("third");
  bench.config.counted = true;
  bench.config.dataSources[1].count = 2;
  bench.config.dataSources[2].count = 2;
  bench.server->fillNumbered("second", 2);
  bench.server->fillNumbered("third", 2);
  bench.run();
  EXPECT_TRUE(
      bench.says("General error occurred: Data source rows returns no rows/documents. Skipping...\n"
                 "Loading second -> out-second\n"));
  EXPECT_EQ(bench.thread->counts(), (TLoadCounts{4, 0, 0}));
  EXPECT_EQ(bench.completed, (std::vector<std::size_t>{0, 1, 2}));

  // An error that is no row's must not be taken for one: the reader could give it for ever.
  for (const auto& [fault, message] : {std::pair(&TToyFaults::cursorBreaksAt, "The toy cursor broke."),
                                       std::pair(&TToyFaults::memoryEndsAt, std::bad_alloc().what())}) {
    SCOPED_TRACE(message);
    TBench other;
    other.map("second");
    other.server->fillNumbered("rows", 5);
    other.server->fillNumbered("second", 2);
    other.config.bulkSize = 100;
    other.server->faults.*fault = 4;
    other.run();
    EXPECT_TRUE(
        other.says("General error occurred: " + std::string(message) + "\nLoad operation finished at "));
    EXPECT_FALSE(other.says("Loading second"));
    // What the writer held when the cursor broke is stored and counted.
    EXPECT_EQ(other.totals, (std::vector<TLoadCounts>{{3, 0, 0}}));
    EXPECT_TRUE(other.says("Total loaded 3 documents.\n"));
    EXPECT_TRUE(other.completed.empty());
  }
}

TEST(LdThread, NamesWhatIsMissing) {
  TBench bench;
  bench.server->fillNumbered("rows", 1);
  bench.config.dataSources[0].name = "other";
  bench.run();
  EXPECT_TRUE(bench.says("General error occurred: Unable to find root data source rows\n"));
  TBench target;
  target.server->faults.loseTargetOnOpen = true;
  target.run();
  EXPECT_TRUE(target.says("General error occurred: The toy target is gone.\nLoad operation finished at "));
}

TEST(LdThread, ChecksItsShare) {
  TBench bench;
  bench.server->fillNumbered("rows", 2);
  bench.config.counted = true;
  bench.config.degree = 3;
  bench.config.dataSources[0].count = 2;
  bench.run();
  EXPECT_TRUE(bench.says(
      "General error occurred: Parallel degree cannot be greater than the number of documents/rows "
      "to be loaded. You should decrease parallel degree for the data source rows\n"));
  TBench uncounted;
  uncounted.server->fillNumbered("rows", 2);
  uncounted.config.degree = 2;
  uncounted.run();
  EXPECT_TRUE(
      uncounted.says("General error occurred: Data source rows returns no rows/documents. Skipping...\n"));
}

TEST(LdThread, EndsAtOnceWithoutConnections) {
  TBench bench;
  bench.server->faults.refusedConnections = {2};
  bench.run();
  EXPECT_TRUE(bench.thread->failed());
  EXPECT_TRUE(bench.thread->finished());
  EXPECT_EQ(bench.messages(),
            "Load operation started at 1970-01-01 00:00:00\n"
            "Initializing source and target database connections.\n"
            "Initialization error: Unable to reach the toy. connection refused\n");
  EXPECT_TRUE(bench.totals.empty());
}

TEST(LdThread, AStoppedThreadStillTellsItsTotals) {
  TBench bench;
  bench.server->fillNumbered("rows", 1000);
  bench.server->faults.pauseMilliseconds = 1;
  bench.runUntil([&] { return bench.thread->counts().loaded >= 5; });
  const std::string loaded = std::to_string(bench.thread->counts().loaded);
  EXPECT_LT(bench.thread->counts().loaded, 1000);
  EXPECT_TRUE(bench.says("Cancelled loading rows -> out-rows\nLoaded " + loaded + " documents.\n"));
  EXPECT_TRUE(bench.says("Load operation cancelled at 1970-01-01 00:00:00\nTotal loaded " + loaded +
                         " documents.\n"));
  EXPECT_TRUE(
      bench.messages().ends_with("Closing database connections...\n"
                                 "Finished closing database connections...\nStopped.\n"));
  EXPECT_TRUE(bench.completed.empty());
}

TEST(LdThread, AStopWhileAStoreIsAwaitedIsNoFault) {
  TBench bench;
  bench.server->fillNumbered("rows", 10);
  bench.server->faults.neverAnswers = true;
  bench.runUntil([&] { return bench.handedOver == 2; });  // with "Loading rows", before the first row
  EXPECT_FALSE(bench.says("General error occurred: ")) << bench.messages();
  EXPECT_TRUE(
      bench.says("The toy was told to stop.\nCancelled loading rows -> out-rows\nLoaded 0 documents.\n"
                 "Discarded 0 documents.\nSkipped 0 documents.\nProcessed 0 documents.\n"
                 "Load operation cancelled at "));
}

}  // namespace

}  // namespace hollowmere

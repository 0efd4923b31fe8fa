// Starting, watching and ending a load.
#include <filesystem>

#include "project/loadbench.h"

namespace hollowmere {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

class RunControl : public testing::Test {
 protected:
  TLoadBench bench;

  void refused(const std::string& message) {
    SCOPED_TRACE(message);
    bench.prompt.expect(TPromptKind::Error, message);
    TRunControl& control = bench.open(false);
    EXPECT_FALSE(control.start());
    EXPECT_TRUE(bench.prompt.done());
    EXPECT_EQ(control.state(), TRunState::Idle);
    EXPECT_EQ(control.exitCode(), 1);
  }

  /// Slow rows, so that there is something to stop.
  void slowRows() {
    bench.map("rows");
    bench.server->fillNumbered("rows", 5000);
    bench.server->faults.pauseMilliseconds = 1;
  }
};

TEST_F(RunControl, RefusesInOrder) {
  TProject& project = bench.project;
  project = {};
  refused(
      "Unable to open log file  because of the error no file name is given Please ensure that this file is "
      "not "
      "used by other processes.");
  project.logFile = bench.folder.file("log.txt");
  project.discFile = bench.folder.file("none/discard.txt");
  refused("Unable to open discard file " + project.discFile +
          " because of the error No such file or directory Please ensure that this file is not used by other "
          "processes.");
  project.discFile = bench.folder.file("discard.txt");
  project.degree = 2;
  refused("Source database type not defined.");
  project.source.dbType = "JSON File";
  refused("Target database type not defined.");
  project.target.dbType = "JSON File";
  refused("Source and target cannot have type \"JSON File\".");
  project.target.dbType = "Nowhere";
  refused("Parallel processing is not yet supported for sources or targets with type \"JSON File\".");
  std::swap(project.source.dbType, project.target.dbType);
  refused("Parallel processing is not yet supported for sources or targets with type \"JSON File\".");
  project.degree = 1;
  refused("Source database type is not supported.");
  project.source.dbType = "Toy";
  project.target.dbType = "Nowhere";
  refused("Target database type is not supported.");
  project.target.dbType = "Toy";
  refused("Source database connection not configured.");
  project.source.connection = TObject{{"host", "toy"}};
  project.target.connection = "{}";
  refused("Target database connection not configured.");
  project.target.connection = TObject{{"host", "toy"}};
  bench.server->faults.refusedConnections = {1, 3};
  refused("Unable to connect to source database: connection refused");
  refused("Unable to connect to target database: connection refused");
  refused("No data sources defined.");
  project.dataSources = {toySource("rows", "unordered")};
  refused("No data targets defined.");
  project.dataTargets = {{"place", "out", {}}};
  refused("No data mapping defined.");
  project.mapping = {{"plaice", "rous", "String", {{"a", "x", "String", {}}, {"a", "y", "Number", {}}}}};
  refused("Unable to find data target: plaice");
  project.mapping[0].target = "place";
  bench.server->traits.requiredField = {"ROWKEY", "Row key field is not mapped: "};
  refused("Row key field is not mapped: place");
  project.mapping[0].children.push_back({"rowkey", "k", "String", {}});
  refused("Data source \"rous\" is not found or not defined.");
  project.mapping[0].source = "rows";
  refused("The source attributes \"x\" and \"y\" of \"rows\" are both mapped to the target attribute \"a\".");
  project.mapping[0].children = {
      {"_id", "x", "String", {}}, {"_ID", "y", "String", {}}, {"rowkey", "k", "String", {}}};
  refused(
      "The source attributes \"x\" and \"y\" of \"rows\" are both mapped to the target attribute \"_ID\".");
  project.mapping[0].children[1] = {"list", "gone", "Data Source (JSON List)", {}};
  refused("Data source \"gone\" is not found or not defined.");
  project.mapping[0].children[1] = {"list", "rows", "Strnig", {}};
  refused("Unknown target type \"Strnig\" of list");
  project.mapping[0].children.erase(project.mapping[0].children.begin() + 1);
  project.degree = 2;
  refused("The toy has no order in rows");
  project.degree = 1;
  bench.server->requiredFields = {"_ID", "number"};
  refused("Required data field is not mapped: number");
  bench.server->requiredFields = {"rowkey"};
  bench.server->faults.countFails = true;
  bench.prompt.expect(TPromptKind::Confirmation, "Are you sure to start load operation?", TAnswer::Yes);
  refused("Error encountered: Data source rows caused the following error: The toy cannot count.");
  bench.server->faults.countFails = false;
  EXPECT_EQ(bench.run(false), 0);
}

TEST_F(RunControl, AnUnwantedStartLeavesNothing) {
  bench.map("rows");
  bench.server->fillNumbered("rows", 1);
  bench.prompt.expect(TPromptKind::Confirmation, "Are you sure to start load operation?", TAnswer::No);
  EXPECT_FALSE(bench.open(false).start());
  EXPECT_EQ(bench.control->state(), TRunState::Idle);
  EXPECT_EQ(bench.log(), "");
  EXPECT_EQ(bench.run(false), 0) << "the files are free again";
}

TEST_F(RunControl, ARefusedBatchStartLeavesTwoLines) {
  writeBytes(bench.project.logFile, "before\n");
  bench.prompt.expect(TPromptKind::Error, "No data sources defined.");
  EXPECT_EQ(bench.run(), 1);
  EXPECT_EQ(bench.log(),
            "before\nBatch execution error for project Trial: No data sources defined.\n"
            "Terminating processing with exit code 1\n");
}

TEST_F(RunControl, TheLogFileBelongsToOneRun) {
  slowRows();
  EXPECT_TRUE(bench.open(true).start());
  TLoadBench other;
  other.map("rows");
  other.project.logFile = bench.project.logFile;
  const std::string inUse =
      " because of the error the file is in use by another run Please ensure that this file "
      "is not used by other processes.";
  other.prompt.expect(TPromptKind::Error, "Unable to open log file " + bench.project.logFile + inUse);
  EXPECT_EQ(other.run(), 1);
  other.project.logFile = other.folder.file("log.txt");
  other.project.discFile = bench.project.discFile;
  other.prompt.expect(TPromptKind::Error, "Unable to open discard file " + bench.project.discFile + inUse);
  EXPECT_EQ(other.run(), 1);
  bench.control->stopNow();
  while (bench.control->tick()) bench.mainThread.pump(5);
}

TEST_F(RunControl, EveryThresholdStopsARun) {
  struct TThreshold {
    std::int64_t TProject::*limit;
    const char* text;
  };
  const TThreshold thresholds[] = {
      {&TProject::loadNum, "Reached threshold of 5 rows/documents to load.\nStopping loading threads...\n"},
      {&TProject::discNum, "Reached threshold of 5 discarded rows/documents.\nStopping loading threads...\n"},
      {&TProject::skipNum, "Reached threshold of 5 skipped rows/documents.\nStopping loading threads...\n"}};
  for (const TThreshold& one : thresholds) {
    SCOPED_TRACE(one.text);
    TLoadBench slow;
    slow.map("rows");
    slow.server->fillNumbered("rows", 5000);
    slow.server->faults.pauseMilliseconds = 1;
    slow.server->faults.refuseAll = one.limit == &TProject::discNum;
    if (one.limit == &TProject::skipNum)
      for (int i = 1; i <= 5000; ++i) slow.server->faults.unreadableRows.insert(i);
    slow.project.*one.limit = 5;
    EXPECT_EQ(slow.run(), 0);
    EXPECT_GE(slow.counts().processed(), 5);
    EXPECT_LT(slow.counts().processed(), 2000);
    const std::string log = slow.log();
    const std::size_t at = log.find(one.text);
    ASSERT_NE(at, std::string::npos);
    EXPECT_EQ(log.find("Stopping", at + std::string(one.text).size()), std::string::npos) << "said once";
    EXPECT_TRUE(slow.logged("Cancelled loading rows -> t-rows\n"));
    EXPECT_TRUE(
        slow.logged("Total processed rows/documents " + std::to_string(slow.counts().processed()) + "\n"));
    EXPECT_TRUE(slow.logged("Processing successfully completed with exit code 0\n"));
  }
}

TEST_F(RunControl, AThresholdOfNoneNeverStops) {
  bench.map("rows");
  bench.server->fillNumbered("rows", 50);
  bench.server->faults.refuseAll = true;
  EXPECT_EQ(bench.run(), 0);
  EXPECT_EQ(bench.counts(), (TLoadCounts{0, 50, 0}));
  EXPECT_FALSE(bench.logged("threshold"));
}

TEST_F(RunControl, TheUserStopsAHealthyRunSoon) {
  slowRows();
  steady_clock::time_point stopped;
  int ticks = 0;
  bench.prompt.expect(TPromptKind::Confirmation, "Are you sure to start load operation?", TAnswer::Yes);
  TRunControl& control = bench.open(false);
  ASSERT_TRUE(control.start());
  EXPECT_EQ(control.status(), "Working...");
  while (control.tick()) {
    bench.mainThread.pump(5);
    if (++ticks == 3) {
      bench.prompt.expect(TPromptKind::Confirmation, "Are you sure to stop load operation?", TAnswer::No);
      control.stop();
      EXPECT_EQ(control.state(), TRunState::Running);
    }
    if (ticks == 6) {
      bench.prompt.expect(TPromptKind::Confirmation, "Are you sure to stop load operation?", TAnswer::Yes);
      control.stop();
      control.stop();
      stopped = steady_clock::now();
    }
  }
  EXPECT_LT(steady_clock::now() - stopped, milliseconds(500));
  EXPECT_LT(bench.counts().loaded, 2000);
  EXPECT_EQ(bench.counts().loaded, static_cast<std::int64_t>(bench.server->documents("out-rows").size()));
  EXPECT_TRUE(bench.logged("Stopping loading threads...\n"));
  EXPECT_TRUE(bench.logged(": Thread#1: Load operation cancelled at <time>\n"));
  EXPECT_TRUE(bench.logged(": Thread#1: Stopped.\n"));
  EXPECT_TRUE(bench.logged("Load operation finished.\n"));
}

TEST_F(RunControl, TellsHowFarItIs) {
  slowRows();
  bool seen = false;
  bench.run(true, [&](TRunControl& control) {
    bench.clock.advance(1000);
    const TRunProgress progress = control.progress();
    EXPECT_EQ(progress.maximum, 5000);
    EXPECT_LE(progress.counts.loaded, progress.done);
    EXPECT_EQ(progress.runningThreads + progress.stoppedThreads, 1);
    if (progress.counts.loaded > 10) {
      EXPECT_GT(progress.speed(), 0);
      seen = true;
      control.stopNow();
    }
  });
  EXPECT_TRUE(seen);
  EXPECT_TRUE(bench.logged("Processing stopped by the user\n"));
  EXPECT_FALSE(bench.logged("Processing time 0 hours 0 minutes 0 seconds"));
}

TEST_F(RunControl, AFullDiskStopsTheRun) {
  slowRows();
  bench.project.discFile = "/dev/full";
  bench.server->faults.refusedDocuments = {2};
  for (int i = 1; i <= 1001; ++i) bench.server->faults.refusedDocuments.insert(i);
  const std::string message =
      "Unable to write to discard file /dev/full because of the error No space left on device. The load "
      "operation is "
      "stopped.";
  bench.prompt.expect(TPromptKind::Error, message);
  EXPECT_EQ(bench.run(), 1);
  EXPECT_LT(bench.counts().processed(), 4000);
  EXPECT_TRUE(bench.log().ends_with("Batch execution error for project Trial: " + message +
                                    "\nTerminating processing with exit code 1\n"));

  // The same of the log: nothing is loaded at all. (Here, for only one run at a time has the device.)
  TLoadBench unlogged;
  unlogged.map("rows");
  unlogged.server->fillNumbered("rows", 5);
  unlogged.project.logFile = "/dev/full";
  unlogged.prompt.expect(TPromptKind::Error,
                         "Error encountered: Unable to write to log file /dev/full because of the error No "
                         "space left on device. The load operation is stopped.");
  EXPECT_EQ(unlogged.run(), 1);
  EXPECT_TRUE(unlogged.server->documents("out-rows").empty());
}

TEST_F(RunControl, WithoutAnyThreadTheRunHasFailed) {
  bench.map("rows");
  bench.server->fillNumbered("rows", 4);
  bench.project.degree = 2;
  // The first two connections are those of the checks.
  for (int i = 3; i < 10; ++i) bench.server->faults.refusedConnections.insert(i);
  bench.prompt.expect(TPromptKind::Error, "All load threads failed to initialize.");
  EXPECT_EQ(bench.run(), 1);
  EXPECT_TRUE(
      bench.logged(": Thread#2: Initialization error: Unable to reach the toy. connection refused\n"));
  EXPECT_TRUE(bench.log().ends_with(
      "Batch execution error for project Trial: All load threads failed to initialize.\n"
      "Terminating processing with exit code 1\n"));
}

TEST_F(RunControl, OneThreadIsEnoughForASuccess) {
  bench.map("rows");
  bench.server->fillNumbered("rows", 4);
  bench.project.degree = 2;
  bench.server->faults.refusedConnections = {3};
  EXPECT_EQ(bench.run(), 0);
  EXPECT_EQ(bench.counts().loaded, 2);
}

TEST_F(RunControl, GivesUpItsThreadsWhenItGoes) {
  slowRows();
  bench.server->faults.neverAnswers = true;
  ASSERT_TRUE(bench.open(true).start());
  const auto start = steady_clock::now();
  bench.control.reset();
  EXPECT_LT(steady_clock::now() - start, milliseconds(2000));
}

TEST_F(RunControl, GuardsTheWindowsWhileItRuns) {
  slowRows();
  EXPECT_EQ(closeRefusal(nullptr), "");
  ASSERT_TRUE(bench.open(true).start());
  const TRunControl* run = &*bench.control;
  EXPECT_EQ(closeRefusal(run), "Unable to close this window because load operation is still in progress.");
  EXPECT_EQ(exitRefusal({nullptr, run}),
            "Load operation is still in progress for the project Trial. Wait or cancel load operation before "
            "exiting "
            "application.");
  bench.control->stopNow();
  while (bench.control->tick()) bench.mainThread.pump(5);
  EXPECT_EQ(closeRefusal(run), "");
  EXPECT_EQ(exitRefusal({run}), "");
}

}  // namespace

}  // namespace hollowmere

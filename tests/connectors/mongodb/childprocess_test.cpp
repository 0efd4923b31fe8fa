#include "connectors/mongodb/childprocess.h"

#include <gtest/gtest.h>
#include <sys/types.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <stdexcept>
#include <string>
#include <thread>

namespace hollowmere {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

struct TRun {
  TChildResult result;
  std::string output;
  milliseconds took{0};
};

TRun run(const std::string& script, const std::function<void(TChildJob&)>& adjust = {}) {
  TRun made;
  TChildJob job;
  job.program = "/bin/bash";
  job.arguments = {"-c", script};
  job.timeoutMilliseconds = 20'000;
  job.output = [&](std::string_view piece) { made.output += piece; };
  if (adjust) adjust(job);
  const auto start = steady_clock::now();
  made.result = runChild(job);
  made.took = std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
  return made;
}

/// A killed process may take a moment to be gone.
bool ends(pid_t process) {
  for (int i = 0; i < 200; ++i) {
    if (::kill(process, 0) != 0 && errno == ESRCH) return true;
    std::this_thread::sleep_for(milliseconds(10));
  }
  return false;
}

TEST(ChildProcess, TellsOutputErrorsAndExitCode) {
  const TRun made = run("echo \"$WORD\"; echo bad >&2; exit 7", [](TChildJob& job) {
    job.changed = {{"WORD", "a b"}, {"PATH", "/nowhere"}};
  });
  EXPECT_EQ(made.result.end, TChildEnd::Exited);
  EXPECT_EQ(made.result.code, 7);
  EXPECT_EQ(made.output, "a b\n");
  EXPECT_EQ(made.result.errors, "bad\n");
  EXPECT_EQ(run("kill -9 $$").result.end, TChildEnd::Signalled);
  EXPECT_EQ(run("cat; echo done").output, "done\n") << "input is empty";
  TChildJob missing;
  missing.program = "/no/such/program";
  EXPECT_EQ(runChild(missing).end, TChildEnd::NotStarted);
  EXPECT_EQ(runChild(missing).code, ENOENT);
}

TEST(ChildProcess, MuchOutputOnBothStreamsDoesNotBlock) {
  const TRun made = run("head -c 3000000 /dev/zero & head -c 3000000 /dev/zero >&2; wait");
  EXPECT_EQ(made.result.end, TChildEnd::Exited);
  EXPECT_EQ(made.output.size(), 3'000'000U);
  EXPECT_LE(made.result.errors.size(), 16U * 1024);
}

TEST(ChildProcess, AStopEndsItAndWhatItStarted) {
  TStopFlag stop;
  std::thread later([&] {
    std::this_thread::sleep_for(milliseconds(200));
    stop.set();
  });
  const TRun made = run("sleep 60 & echo $!; wait", [&](TChildJob& job) { job.stop = &stop; });
  later.join();
  EXPECT_EQ(made.result.end, TChildEnd::Stopped);
  EXPECT_LT(made.took, milliseconds(1500));
  EXPECT_TRUE(ends(std::stoi(made.output)));
}

TEST(ChildProcess, OneThatIgnoresTheSignalIsKilled) {
  const TRun made = run("trap '' TERM; echo $$; while :; do sleep 1; done",
                        [](TChildJob& job) { job.timeoutMilliseconds = 200; });
  EXPECT_EQ(made.result.end, TChildEnd::TimedOut);
  EXPECT_GE(made.took, milliseconds(2000));
  EXPECT_LT(made.took, milliseconds(4000));
  EXPECT_TRUE(ends(std::stoi(made.output)));
}

TEST(ChildProcess, AFloodIsCutOff) {
  const TRun made = run("yes", [](TChildJob& job) { job.outputLimit = 100'000; });
  EXPECT_EQ(made.result.end, TChildEnd::TooMuchOutput);
  EXPECT_LE(made.output.size(), 100'000U);
  EXPECT_LT(made.took, milliseconds(1500));
}

TEST(ChildProcess, OneLeftBehindDoesNotKeepUsWaiting) {
  const TRun made = run("sleep 60 & echo $!");
  EXPECT_EQ(made.result.end, TChildEnd::Exited);
  EXPECT_LT(made.took, milliseconds(2000));
  EXPECT_TRUE(ends(std::stoi(made.output)));
}

TEST(ChildProcess, AnExceptionOfTheReaderLeavesNothingRunning) {
  std::string seen;
  EXPECT_THROW(run("echo $$; sleep 60",
                   [&](TChildJob& job) {
                     job.output = [&](std::string_view piece) {
                       seen += piece;
                       throw std::runtime_error("full");
                     };
                   }),
               std::runtime_error);
  EXPECT_TRUE(ends(std::stoi(seen)));
}

}  // namespace

}  // namespace hollowmere

#include "engine/loadqueue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace hollowmere {

namespace {

struct TDrained {
  std::string log;
  std::string disc;
  int calls = 0;
};

TDrained drain(TLoadQueue& queue) {
  TDrained drained;
  queue.drain([&](const std::string& lines) { drained.log = lines, ++drained.calls; },
              [&](const std::string& lines) { drained.disc = lines, ++drained.calls; });
  return drained;
}

TEST(LoadQueue, TheLineBehindTheThresholdIsDue) {
  for (const bool discards : {false, true}) {
    TLoadQueue queue;
    const auto add = [&] { discards ? queue.addDisc("x") : queue.addLog("x"); };
    for (int i = 0; i < 1000; ++i) {
      add();
      ASSERT_FALSE(queue.due(false)) << i;
    }
    add();
    EXPECT_TRUE(queue.due(false));
    EXPECT_FALSE(queue.due(true)) << "a stopped thread hands over only what is forced";
    const TDrained drained = drain(queue);
    const std::string& lines = discards ? drained.disc : drained.log;
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 1000);
    EXPECT_EQ(drained.calls, 1) << "an empty queue is not handed over";
    EXPECT_FALSE(queue.due(false));
  }
}

TEST(LoadQueue, OneFullQueueTakesTheOtherAlong) {
  TLoadQueue queue;
  queue.addDisc("d1");
  for (int i = 0; i < 1001; ++i) queue.addLog("x");
  const TDrained drained = drain(queue);
  EXPECT_EQ(drained.disc, "d1");
  EXPECT_EQ(drained.calls, 2);
}

TEST(LoadQueue, ForceReachesAStoppedThread) {
  TLoadQueue queue;
  queue.addLog("a");
  queue.addLog("b");
  EXPECT_FALSE(queue.due(true));
  queue.force();
  EXPECT_TRUE(queue.due(true));
  EXPECT_EQ(drain(queue).log, "a\nb");
  queue.addLog("c");
  EXPECT_FALSE(queue.due(false)) << "one force is one flush";
}

TEST(LoadQueue, ManyBytesAreDue) {
  TLoadQueue queue;
  queue.addDisc(std::string(TLoadQueue::thresholdBytes, 'x'));
  EXPECT_FALSE(queue.due(false));
  queue.addDisc("y");
  EXPECT_TRUE(queue.due(false));
}

}  // namespace

}  // namespace hollowmere

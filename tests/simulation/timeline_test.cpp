#include "simulation/timeline.hpp"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tamo::simulation {
namespace {

using std::chrono::milliseconds;

class TimelineTest : public testing::Test {
 protected:
  TimelineTest() { timeline.begin(dice); }
  bool runAll() { return timeline.runUntilIdle(1000); }
  void note(const std::string& what) {
    const auto at = std::chrono::duration_cast<milliseconds>(timeline.now()).count();
    seen.push_back(std::to_string(at) + " " + what);
  }

  Dice dice{1};
  Timeline timeline;
  std::vector<std::string> seen;
};

TEST_F(TimelineTest, EventsComeInTheOrderOfTheirTimes) {
  timeline.after(milliseconds(20), [this] { note("late"); });
  timeline.after(milliseconds(10), [this] { note("early"); });
  EXPECT_TRUE(runAll());
  EXPECT_EQ(seen, (std::vector<std::string>{"10 early", "20 late"}));
}

TEST_F(TimelineTest, StrandsSleepBesideEachOther) {
  for (const auto* name : {"a", "b"}) {
    const auto pause = milliseconds(name[0] == 'a' ? 10 : 15);
    timeline.start([this, name, pause] {
      for (int turn = 0; turn < 2; ++turn) {
        timeline.sleep(pause);
        note(name);
      }
    });
  }
  EXPECT_TRUE(runAll());
  EXPECT_EQ(seen, (std::vector<std::string>{"10 a", "15 b", "20 a", "30 b"}));
}

TEST_F(TimelineTest, AParkedStrandGoesOnWhenItIsWoken) {
  auto& strand = timeline.start([this] {
    timeline.park();
    note("woken");
  });
  timeline.after(milliseconds(7), [this, &strand] { timeline.wake(strand); });
  EXPECT_TRUE(runAll());
  EXPECT_EQ(seen, std::vector<std::string>{"7 woken"});
}

/// The wake-up that a sleep ordered must not end the wait after it.
TEST_F(TimelineTest, AnEarlierSleepDoesNotEndALaterWait) {
  auto& strand = timeline.start([this] {
    timeline.sleep(milliseconds(50));
    note("woken early");
    timeline.sleep(milliseconds(100));
    note("slept to the end");
  });
  timeline.after(milliseconds(7), [this, &strand] { timeline.wake(strand); });
  EXPECT_TRUE(runAll());
  EXPECT_EQ(seen, (std::vector<std::string>{"7 woken early", "107 slept to the end"}));
}

TEST_F(TimelineTest, NoStrandIsCurrentWithinAnEvent) {
  Strand* within = nullptr;
  auto& strand = timeline.start([this] { timeline.sleep(milliseconds(20)); });
  timeline.after(milliseconds(10), [this, &within] { within = timeline.current(); });
  within = &strand;
  EXPECT_TRUE(runAll());
  EXPECT_EQ(within, nullptr);
}

TEST_F(TimelineTest, WhatGoesOnForEverIsTold) {
  timeline.start([this] {
    while (seen.size() < 5000) {
      timeline.sleep(milliseconds(1));
      note("on");
    }
  });
  EXPECT_FALSE(timeline.runUntilIdle(100));
  EXPECT_LE(seen.size(), 100U);
  EXPECT_TRUE(timeline.runUntilIdle(10'000));
}

TEST_F(TimelineTest, TheSameSeedChoosesTheSameOrderOfOneInstant) {
  std::vector<std::vector<std::string>> orders;
  for (int time = 0; time < 2; ++time) {
    Dice same(7);
    seen.clear();
    timeline.begin(same);
    for (const auto* name : {"a", "b", "c", "d", "e"})
      timeline.after(milliseconds(1), [this, name] { note(name); });
    EXPECT_TRUE(runAll());
    orders.push_back(seen);
  }
  EXPECT_EQ(orders[0], orders[1]);
  EXPECT_EQ(orders[0].size(), 5U);
}

}  // namespace
}  // namespace tamo::simulation

#include "platform/stage/stage_clock.hpp"

#include <gtest/gtest.h>

#include "temporary_stage.hpp"

namespace tamo::stage {
namespace {

using namespace std::chrono_literals;

class StageClockTest : public ::testing::Test {
 protected:
  /// To the nearest minute, for a machine that is busy.
  [[nodiscard]] std::chrono::minutes ahead() const {
    return std::chrono::round<std::chrono::minutes>(clock.wallNow() - std::chrono::system_clock::now());
  }

  TemporaryStage stage;
  StageClock clock{stage.root};
};

TEST_F(StageClockTest, TheWallClockIsSetAtAnyTime) {
  EXPECT_EQ(ahead(), 0min);
  stage.root.set("clock-ahead", "3600");
  EXPECT_EQ(ahead(), 60min);
  stage.root.set("clock-ahead", "-86400");
  EXPECT_EQ(ahead(), -24h);
  stage.root.set("clock-ahead", std::nullopt);
  EXPECT_EQ(ahead(), 0min);
}

TEST_F(StageClockTest, WhatIsNoNumberSetsNothing) {
  stage.root.set("clock-ahead", "an hour");
  EXPECT_EQ(ahead(), 0min);
}

TEST_F(StageClockTest, TheMonotonicClockKnowsNothingOfIt) {
  const auto before = clock.monotonicNow();
  stage.root.set("clock-ahead", "3600");
  EXPECT_LT(clock.monotonicNow() - before, 10min);
  EXPECT_GE(clock.monotonicNow(), before);
}

}  // namespace
}  // namespace tamo::stage

#include "stage/picture/time_scale.hpp"

#include <gtest/gtest.h>

namespace tamo::stage {
namespace {

TEST(TimeScaleTest, TheFirstMomentStandsLeftAndTheLastRight) {
  const TimeScale scale({0, 400'000, 2'400'000}, 100);
  EXPECT_DOUBLE_EQ(scale.place(0), 0);
  EXPECT_DOUBLE_EQ(scale.place(2'400'000), 100);
  EXPECT_DOUBLE_EQ(scale.place(-5), 0);
  EXPECT_DOUBLE_EQ(scale.place(9'000'000), 100);
}

TEST(TimeScaleTest, WhatIsLaterNeverStandsFurtherLeft) {
  const TimeScale scale({0, 1, 2, 500, 400'000, 2'400'000, 2'400'100, 60'000'000}, 700);
  double before = -1;
  for (std::int64_t moment = 0; moment < 60'000'000; moment += 997) {
    EXPECT_GE(scale.place(moment), before) << moment;
    before = scale.place(moment);
  }
}

TEST(TimeScaleTest, ALongerGapIsWiderAndTheShortestHasRoomForASign) {
  const TimeScale scale({0, 100, 50'100, 2'050'100}, 300);
  const auto shortest = scale.place(100);
  const auto middle = scale.place(50'100) - shortest;
  const auto longest = 300 - scale.place(50'100);
  EXPECT_GT(shortest, 10);
  EXPECT_GT(middle, 2 * shortest);
  EXPECT_GT(longest, 2 * middle);
}

TEST(TimeScaleTest, WithinAGapTimeIsEven) {
  const TimeScale scale({0, 1000, 3000}, 100);
  EXPECT_NEAR(scale.place(2000), (scale.place(1000) + 100) / 2, 0.001);
}

}  // namespace
}  // namespace tamo::stage

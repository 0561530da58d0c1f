#include <gtest/gtest.h>

#include "attacks/sweep.hpp"

/// Somebody else on the Mac strikes at every moment of every action. The build says how many of these its check can bear.
namespace tamo::attacks {
namespace {

std::string firstsOf(const Tally& tally) {
  std::string text;
  for (const auto& each : tally.wrong)
    text += each + "\n";
  return text;
}

void playAll(Sweep& sweep) {
  for (const auto& attack : attacks())
    for (const auto& scene : faults::scenes())
      for (const auto by : {By::Switch, By::Url})
        sweep.play(attack, scene, by);
}

void expectSound(const Tally& tally) {
  EXPECT_EQ(tally.broken, 0U) << firstsOf(tally);
  EXPECT_EQ(tally.missed, 0U);
  EXPECT_GT(tally.takes, 0U);
  std::printf("%llu takes, %llu in the gap\n", static_cast<unsigned long long>(tally.takes),
              static_cast<unsigned long long>(tally.inTheGap));
  for (const auto& [what, times] : tally.excused)
    std::printf("excused: %s, %llu times\n", what.c_str(), static_cast<unsigned long long>(times));
}

TEST(AttacksTest, EveryInvariantHoldsAtEveryMoment) {
  Sweep sweep(TAMO_ATTACKS_STRIDE);
  playAll(sweep);
  expectSound(sweep.tally());
}

TEST(AttacksTest, DISABLED_EveryInvariantHoldsAtEveryMomentOfAll) {
  Sweep sweep(1);
  playAll(sweep);
  expectSound(sweep.tally());
}

}  // namespace
}  // namespace tamo::attacks

#include <gtest/gtest.h>
#include <map>

#include "attacks/sweep.hpp"

/// Somebody else on the Mac strikes at every moment of every action. The build says how many of these its check can bear.
namespace tamo::attacks {
namespace {

std::string firstsOf(const Tally& tally) {
  std::string text;
  for (const auto& [kind, wrong] : tally.wrong)
    text += std::to_string(wrong.times) + " times " + kind + ", first: " + wrong.first + "\n";
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
  testing::Test::RecordProperty("takes", std::to_string(tally.takes));
  testing::Test::RecordProperty("in the gap", std::to_string(tally.inTheGap));
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

/// An excuse that nobody needs would hide what is to be seen.
TEST(AttacksTest, EachExcuseIsNeeded) {
  const std::map<std::string_view, std::vector<std::string_view>> scenes{
      {"print-linked", {"restart"}},          {"copy-linked", {"move-copies"}},
      {"copy-tampered", {"move-copies"}},     {"list-spoilt", {"move-copies", "register"}},
      {"destination-taken", {"move-copies"}}, {"destination-appears", {"move-cancelled"}}};
  for (const auto& attack : attacks()) {
    if (attack.excused.empty()) continue;
    Sweep sweep(1);
    ASSERT_TRUE(scenes.contains(attack.name)) << attack.name;
    for (const auto scene : scenes.at(attack.name))
      sweep.play(attack, *faults::sceneNamed(scene), By::Switch);
    EXPECT_EQ(sweep.tally().excused.size(), attack.excused.size()) << attack.name;
  }
}

struct Canary {
  const char* attack;
  const char* scene;
  simulation::Plant plant;
  /// The kind of what is said of it.
  const char* kind;
};

/// Tests of the rig: a companion that is told wrongly who the Core is, or nothing of a revert, or signals somebody else.
TEST(AttackCanaryTest, APlantedFaultIsFound) {
  using simulation::Plant;
  for (const auto& canary :
       {Canary{"core-pid-taken", "restart-ignored", Plant::ForgedIdentity, "SignalTarget"},
        Canary{"core-joins-stranger", "restart-ignored", Plant::SignalToStranger, "SignalTarget"},
        Canary{"revert-begins", "restart-ignored", Plant::DeafToMarkers, "Spared"},
        Canary{"print-linked", "restart", Plant::PrintFileLeft, "left behind"},
        Canary{"unregistered", "status", Plant::StatusTouches, "Permission"}}) {
    Sweep sweep(1, canary.plant);
    sweep.play(*attackNamed(canary.attack), *faults::sceneNamed(canary.scene), By::Switch);
    EXPECT_TRUE(sweep.tally().wrong.contains(std::string(canary.attack) + ": " + canary.kind))
        << canary.attack << ": " << firstsOf(sweep.tally());
  }
}

void harmLetter(World& world, Companion&, const Canaries&) {
  world.files.write(Canaries::letter, "written over");
}
void hitStranger(World& world, Companion&, const Canaries& canaries) {
  world.processes.remove(canaries.stranger());
}
void writeIntoData(World& world, Companion& companion, const Canaries&) {
  world.files.write(companion.dataDirectory() + "core.db", "");
}
void makeBeside(World& world, Companion&, const Canaries&) {
  world.files.write(std::string(Canaries::folder) + "/made", "");
}

TEST(AttackCanaryTest, WhateverComesToHarmIsSeen) {
  for (const auto strike : {harmLetter, hitStranger, writeIntoData, makeBeside}) {
    Sweep sweep(1);
    const Attack attack{.name = "harm", .strike = strike};
    sweep.play(attack, *faults::sceneNamed("status"), By::Switch);
    EXPECT_EQ(sweep.tally().broken, sweep.tally().takes);
  }
}

}  // namespace
}  // namespace tamo::attacks

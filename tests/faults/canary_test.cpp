#include <gtest/gtest.h>
#include <string>

#include "faults/outcomes.hpp"
#include "faults/sweep.hpp"

/// Tests of the rig: a fault that is planted must be found, by the judgement that it concerns.
namespace tamo::faults {
namespace {

using simulation::Plant;
using Kind = void (Sweep::*)(const Scene&, By);

struct Canary {
  const char* name;
  Plant plant;
  Kind kind;
  const char* scene;
  /// A part of what is said of it.
  const char* said;
};

void PrintTo(const Canary& canary, std::ostream* out) {
  *out << canary.name;
}

class FaultCanaryTest : public testing::TestWithParam<Canary> {};

TEST_P(FaultCanaryTest, APlantedFaultIsFound) {
  const auto& canary = GetParam();
  bool found = false;
  // Not every death is needed to see it.
  const std::uint64_t stride = canary.kind == &Sweep::deaths ? 7 : 1;
  Sweep sweep({.stride = stride, .plant = canary.plant, .seen = [&](const Take&, const Played& played) {
                 for (const auto& wrong : played.wrong)
                   found = found || wrong.find(canary.said) != std::string::npos;
               }});
  (sweep.*canary.kind)(*sceneNamed(canary.scene), By::Switch);
  EXPECT_TRUE(found);
}

constexpr Kind single = &Sweep::singles;
constexpr Kind death = &Sweep::deaths;

/// The first ones break what happens only when a call fails; without a failure nothing would be seen.
INSTANTIATE_TEST_SUITE_P(
    Plants, FaultCanaryTest,
    testing::Values(
        Canary{"RegisterAfterFailure", Plant::RegisterAfterFailure, single, "reseat", "Permission"},
        Canary{"DeafToFailure", Plant::DeafToFailure, single, "restart-ignored", "CalledOff"},
        Canary{"PrintFileLeft", Plant::PrintFileLeft, single, "restart", "left behind"},
        Canary{"HalfCopy", Plant::HalfCopy, single, "move-copies", "a part of a copy"},
        Canary{"LastCopyGone", Plant::LastCopyGone, single, "move-copies", "LastCopy"},
        Canary{"StaleLock", Plant::StaleLock, death, "restart", "the lock was not free"},
        Canary{"TornReceipt", Plant::TornWrites, death, "restart", "a receipt that cannot be read"},
        Canary{"TornResult", Plant::TornWrites, death, "move-copies", "a result of a move"},
        Canary{"StrayFiles", Plant::StrayFiles, death, "restart", "left behind"},
        Canary{"HalfCopyAtDeath", Plant::HalfCopy, death, "move-copies", "a part of a copy is left"},
        Canary{"LostDeed", Plant::LostDeed, death, "unregister", "after a clean unregister the status is"},
        Canary{"ScarredData", Plant::ScarredData, death, "restart-ignored", "on a fresh Mac"}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST(OutcomesCanaryTest, AnotherAnswerToAFailureChangesTheText) {
  const auto& scene = *sceneNamed("register-enabled");
  const auto found = outcomesOf(scene, By::Switch, Plant::DeafToFailure);
  EXPECT_NE(found, outcomesOf(scene, By::Switch, Plant::None));
}

/// A sweep that counted faults which never happened would prove nothing.
TEST(PlayerTest, AFaultOrADeathBeyondTheEndOfTheRunIsNotCountedAsReached) {
  Player player;
  const auto& scene = *sceneNamed("status");
  const auto fault = player.play({.scene = &scene, .faults = {{.call = 500, .way = Way::Fails}}}, {});
  EXPECT_EQ(fault.struck, 0U);
  const auto killed =
      player.play({.scene = &scene, .death = Death{.when = Death::When::Before, .call = 500}}, {});
  EXPECT_FALSE(killed.killed);
}

}  // namespace
}  // namespace tamo::faults

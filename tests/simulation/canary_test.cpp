#include <algorithm>
#include <array>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <set>
#include <string>

#include "simulation/faults.hpp"
#include "simulation/simulator.hpp"

/// Tests of the rig: a fault that is planted must be found, by the invariant that it breaks.
namespace tamo::simulation {
namespace {

struct Canary {
  const char* name;
  Plant plant;
  Invariant found;
};

void PrintTo(const Canary& canary, std::ostream* out) {
  *out << canary.name;
}

constexpr std::array canaries{
    Canary{"SignalToLaunchd", Plant::SignalToLaunchd, Invariant::SignalTarget},
    Canary{"SignalToOwnGroup", Plant::SignalToOwnGroup, Invariant::SignalTarget},
    Canary{"SignalToStranger", Plant::SignalToStranger, Invariant::SignalTarget},
    Canary{"ForgedIdentity", Plant::ForgedIdentity, Invariant::SignalTarget},
    Canary{"SecondSignal", Plant::SecondSignal, Invariant::OneSignal},
    Canary{"FastClock", Plant::FastClock, Invariant::Grace},
    Canary{"DeafToFailure", Plant::DeafToFailure, Invariant::CalledOff},
    Canary{"DeafToMarkers", Plant::DeafToMarkers, Invariant::Spared},
    Canary{"WrongNote", Plant::WrongNote, Invariant::StopNote},
    Canary{"TwoHolders", Plant::TwoHolders, Invariant::OneHolder},
    Canary{"ForgottenLock", Plant::ForgottenLock, Invariant::ActsUnderLock},
    Canary{"EarlyUnlock", Plant::EarlyUnlock, Invariant::LockKept},
    Canary{"NoUnlock", Plant::NoUnlock, Invariant::LockKept},
    Canary{"SecondTerminate", Plant::SecondTerminate, Invariant::TerminatesOnce},
    Canary{"NoTerminate", Plant::NoTerminate, Invariant::Ends},
    Canary{"LostLine", Plant::LostLine, Invariant::Lines},
    Canary{"DoubledLine", Plant::DoubledLine, Invariant::Lines},
    Canary{"WrongStatusInLine", Plant::WrongStatusInLine, Invariant::Truth},
    Canary{"WrongReceipt", Plant::WrongReceipt, Invariant::Receipt},
    Canary{"LostReceipt", Plant::LostReceipt, Invariant::Receipt},
    Canary{"StatusTouches", Plant::StatusTouches, Invariant::Permission},
    Canary{"LostDeed", Plant::LostDeed, Invariant::Deeds},
    Canary{"RegisterAfterFailure", Plant::RegisterAfterFailure, Invariant::Permission},
    Canary{"HalfCopy", Plant::HalfCopy, Invariant::WholeOrAbsent},
    Canary{"LastCopyGone", Plant::LastCopyGone, Invariant::LastCopy},
    Canary{"WrongMoveResult", Plant::WrongMoveResult, Invariant::MoveResult},
    Canary{"LongSleep", Plant::LongSleep, Invariant::Waits},
    Canary{"LostCompletion", Plant::LostCompletion, Invariant::Ends},
    Canary{"LostUrl", Plant::LostUrl, Invariant::Requested},
    Canary{"PrintFileLeft", Plant::PrintFileLeft, Invariant::Leftovers},
    Canary{"ClockStopsAsleep", Plant::ClockStopsAsleep, Invariant::Waits},
    Canary{"ClockIsSet", Plant::ClockIsSet, Invariant::Grace},
    Canary{"ForgedAge", Plant::ForgedAge, Invariant::Spared},
    Canary{"UnwatchedStop", Plant::UnwatchedStop, Invariant::Watched},
    Canary{"DataInRealHome", Plant::DataInRealHome, Invariant::DataPlaces},
    Canary{"MarkerUnasked", Plant::MarkerUnasked, Invariant::DataPlaces},
    Canary{"SettingsForgotten", Plant::SettingsForgotten, Invariant::Settings},
    Canary{"SettingsAfterError", Plant::SettingsAfterError, Invariant::Settings},
    Canary{"WrongTarget", Plant::WrongTarget, Invariant::Tools},
    Canary{"PrintDiscarded", Plant::PrintDiscarded, Invariant::Tools},
    Canary{"ErrorsDiscarded", Plant::ErrorsDiscarded, Invariant::Tools},
    Canary{"QuarantineKept", Plant::QuarantineKept, Invariant::Tools},
    Canary{"PrintedAgain", Plant::PrintedAgain, Invariant::Tools},
    Canary{"StrayRead", Plant::StrayRead, Invariant::Files},
    Canary{"GuardAskedAgain", Plant::GuardAskedAgain, Invariant::Files}};

class CanaryTest : public testing::TestWithParam<Canary> {};

bool finds(const Report& report, Invariant invariant) {
  return std::any_of(report.violations.begin(), report.violations.end(),
                     [invariant](const Violation& violation) { return violation.invariant == invariant; });
}

TEST_P(CanaryTest, APlantedFaultIsFound) {
  Simulator simulator;
  for (std::uint64_t seed = 1; seed <= 3000; ++seed) {
    const auto report = simulator.run(seed, {.plant = GetParam().plant});
    if (!finds(report, GetParam().found)) continue;
    RecordProperty("seed", static_cast<int>(seed));
    return;
  }
  FAIL() << "3000 runs did not find it";
}

INSTANTIATE_TEST_SUITE_P(Plants, CanaryTest, testing::ValuesIn(canaries),
                         [](const auto& tested) { return std::string(tested.param.name); });

/// An invariant that nothing was seen to break may be one that nothing can.
TEST(CanaryListTest, EveryInvariantHasACanary) {
  std::set<Invariant> found{Invariant::Repeats};
  for (const auto& canary : canaries)
    found.insert(canary.found);
  EXPECT_EQ(found.size(), invariantCount);
}

/// The page that tells what is proved has its figures from here.
TEST(CanaryListTest, ThePageTellsHowManyThereAre) {
  std::ifstream file(TAMO_SOURCE_DIR "/docs/proof.md");
  const std::string page(std::istreambuf_iterator<char>(file), {});
  const auto tells = [&page](std::size_t number, const std::string& what) {
    return page.contains(std::to_string(number) + " " + what);
  };
  EXPECT_TRUE(tells(invariantCount, "invariants")) << invariantCount;
  EXPECT_TRUE(tells(canaries.size() + 1, "planted faults")) << canaries.size() + 1;
  EXPECT_TRUE(tells(canaries.size(), "faults, at least one for each invariant")) << canaries.size();
  EXPECT_TRUE(tells(callCount, "calls to the platform")) << callCount;
  EXPECT_TRUE(tells(failingCalls(), "of which chance makes fail")) << failingCalls();
}

/// This one is found only by playing a seed twice.
TEST(RepeatTest, ARunThatDependsOnMoreThanItsSeedIsFound) {
  Simulator simulator;
  for (std::uint64_t seed = 1; seed <= 100; ++seed) {
    const RunOptions options{.plant = Plant::Unrepeatable, .traced = true};
    const auto first = simulator.run(seed, options);
    const auto second = simulator.run(seed, options);
    if (first.trace != second.trace) return;
  }
  FAIL() << "100 runs were repeated all the same";
}

}  // namespace
}  // namespace tamo::simulation

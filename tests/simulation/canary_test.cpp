#include <algorithm>
#include <gtest/gtest.h>
#include <string>

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

INSTANTIATE_TEST_SUITE_P(
    Plants, CanaryTest,
    testing::Values(Canary{"SignalToLaunchd", Plant::SignalToLaunchd, Invariant::SignalTarget},
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
                    Canary{"PrintFileLeft", Plant::PrintFileLeft, Invariant::Leftovers}),
    [](const auto& tested) { return std::string(tested.param.name); });

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

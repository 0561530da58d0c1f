#include <cstdlib>
#include <gtest/gtest.h>
#include <map>
#include <string>

#include "simulation/simulator.hpp"

namespace tamo::simulation {
namespace {

/// The build says how many runs its check can bear.
constexpr std::uint64_t shortRuns = TAMO_SIMULATION_RUNS;

std::string told(const Violation& violation) {
  return violation.who + ": " + std::string(nameOf(violation.invariant)) + ": " + violation.detail;
}

/// Every so-manieth run, so that the processors share them.
class SimulationOfAShareTest : public testing::TestWithParam<std::uint64_t> {};

constexpr std::uint64_t shares = 16;

TEST_P(SimulationOfAShareTest, EveryInvariantHoldsInEveryRun) {
  Simulator simulator;
  for (std::uint64_t seed = GetParam(); seed <= shortRuns; seed += shares) {
    const auto report = simulator.run(seed, {});
    ASSERT_TRUE(report.violations.empty()) << "seed " << seed << ": " << told(report.violations.front())
                                           << "\nshown by: prove/simulate 1 " << seed;
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, SimulationOfAShareTest, testing::Range(std::uint64_t{1}, shares + 1));

TEST(SimulationTest, ASeedGivesTheSameTraceByteForByte) {
  Simulator once;
  Simulator again;
  for (std::uint64_t seed = 1; seed <= 300; ++seed) {
    const auto first = once.run(seed, {.traced = true});
    const auto second = again.run(seed, {.traced = true});
    ASSERT_FALSE(first.trace.empty());
    ASSERT_EQ(first.trace, second.trace) << "seed " << seed;
  }
}

TEST(SimulationTest, KeepingATraceChangesNothing) {
  Simulator simulator;
  for (std::uint64_t seed = 1; seed <= 300; ++seed) {
    const auto traced = simulator.run(seed, {.traced = true});
    const auto plain = simulator.run(seed, {});
    ASSERT_EQ(traced.simulated, plain.simulated) << "seed " << seed;
    ASSERT_EQ(traced.met, plain.met) << "seed " << seed;
    ASSERT_TRUE(plain.trace.empty());
  }
}

TEST(SimulationTest, DifferentSeedsGiveDifferentRuns) {
  Simulator simulator;
  std::set<std::string> traces;
  for (std::uint64_t seed = 1; seed <= 100; ++seed)
    traces.insert(simulator.run(seed, {.traced = true}).trace);
  EXPECT_EQ(traces.size(), 100U);
}

/// Invariants hold easily where nothing happens. So the runs have to meet everything that they are about.
TEST(SimulationTest, TheRunsMeetWhatTheyAreAbout) {
  Simulator simulator;
  std::map<std::string, std::uint64_t> met;
  for (std::uint64_t seed = 1; seed <= 6000; ++seed) {
    for (const auto& [name, times] : simulator.run(seed, {}).met)
      met[name] += times;
  }
  for (const auto* name : {"stop exited",
                           "stop cancelled",
                           "stop killedGroup(",
                           "stop killedProcess(",
                           "stop spared(\"revert_release\"",
                           "stop spared(\"revert_restoring\"",
                           "stop spared(\"young_core\"",
                           "move moved",
                           "move opened",
                           "move cancelled",
                           "move not_writable",
                           "move copy_failed",
                           "move refused",
                           "refused",
                           "receipts",
                           "receipt failed",
                           "companions with another home",
                           "settings opened",
                           "sockets tried",
                           "machine slept",
                           "wall clock was set",
                           "signals after a grace that the machine slept through a part of",
                           "locks given up after a wait that the machine slept through a part of",
                           "old Cores spared as young after the clock was set",
                           "lock given up",
                           "companions killed",
                           "definition changed",
                           "definition unchanged",
                           "outcome restart Optional(true)",
                           "outcome restart Optional(false)",
                           "outcome reseat Optional(true)",
                           "outcome register Optional(true)",
                           "outcome sync Optional(true)",
                           "outcome unregister Optional(true)",
                           "outcome status Optional(true)",
                           "outcome unknown Optional(false)"}) {
    EXPECT_GE(met[name], 3U) << name;
  }
}

}  // namespace
}  // namespace tamo::simulation

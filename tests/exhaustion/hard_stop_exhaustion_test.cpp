#include <array>
#include <gtest/gtest.h>
#include <iostream>
#include <set>

#include "exhaustion/hard_stop_table.hpp"

/// The hard stop beside its table, through every sequence of observations for short waits.
namespace tamo::exhaustion {
namespace {

constexpr nanoseconds poll = std::chrono::milliseconds(50);

struct Waits {
  int reap;
  int spare;
};

/// Waits in polls. The two that follow a decision differ, so that one cannot stand in for the other.
constexpr std::array<Waits, 6> waitsAfterDecision{{{0, 3}, {1, 2}, {2, 1}, {3, 0}, {3, 2}, {-1, -1}}};

/// The first look's group and state, which must not count.
const std::array<HardStop::Seen, 2> firsts{
    HardStop::Seen{.pid = 4242, .startMicros = 1000, .group = 4242, .zombie = false},
    HardStop::Seen{.pid = 4242, .startMicros = 1000, .group = 77, .zombie = true},
};

std::vector<Setting> settings(int longestGrace = 3) {
  std::vector<Setting> all;
  for (int grace = -1; grace <= longestGrace; ++grace)
    for (const auto& waits : waitsAfterDecision)
      for (const auto& first : firsts)
        for (const std::int32_t ownGroup : {500, 4242})
          for (const auto oversleep : {nanoseconds(0), poll / 2})
            all.push_back({.first = first,
                           .ownGroup = ownGroup,
                           .grace = grace * poll,
                           .poll = poll,
                           .reap = waits.reap * poll,
                           .spareWait = waits.spare * poll,
                           .oversleep = oversleep});
  return all;
}

/// What the sequences of some settings came to.
struct Comparison {
  std::size_t sequences = 0;
  std::size_t calls = 0;
  std::set<std::size_t> rows = {};
  std::set<std::string> outcomes = {};
  /// The first sequence in which the two differ, as a text; empty when there is none.
  std::string difference = {};
};

std::string describe(const std::optional<HardStop::Outcome>& outcome) {
  return outcome ? HardStop::text(*outcome) : "no outcome";
}

/// Plays one sequence both ways.
void compareSequence(const Table& table, World& world, const HardStop::Operations& operations,
                     Choices& choices, Comparison& sum) {
  world.restart();
  const auto outcome = HardStop::run(world.setting().first, operations);
  const auto trace = world.trace();
  const bool ended = !world.exhausted();
  choices.rewind();
  world.restart();
  const auto played = play(table, world);
  ++sum.sequences;
  sum.calls += trace.size();
  sum.rows.insert(played.rows.begin(), played.rows.end());
  sum.outcomes.insert(HardStop::text(outcome));
  if (ended && played.outcome == outcome && world.trace() == trace && choices.used()) return;
  sum.difference = "procedure: " + HardStop::text(outcome) + "\n" + text(trace) +
                   "table: " + describe(played.outcome) + "\n" + text(world.trace());
}

/// Ends with the first difference.
void compare(const Table& table, const Setting& setting, Comparison& sum) {
  Choices choices;
  World world(setting, choices);
  const auto operations = world.operations();
  do {
    compareSequence(table, world, operations, choices, sum);
  } while (sum.difference.empty() && choices.next());
}

Comparison compareAll(const Table& table, const std::vector<Setting>& all) {
  Comparison sum;
  for (const auto& setting : all) {
    compare(table, setting, sum);
    if (!sum.difference.empty()) break;
  }
  return sum;
}

void compareAndReport(const std::vector<Setting>& all) {
  const auto sum = compareAll(hardStopTable(), all);
  EXPECT_EQ(sum.difference, "");
  EXPECT_EQ(sum.rows.size(), hardStopTable().size()) << "a row of the table was never taken";
  EXPECT_EQ(sum.outcomes,
            (std::set<std::string>{"exited", "cancelled", "spared(\"young_core\", gone: true)",
                                   "spared(\"young_core\", gone: false)", "killedGroup(4242, gone: true)",
                                   "killedGroup(4242, gone: false)", "killedProcess(4242, gone: true)",
                                   "killedProcess(4242, gone: false)", "killedProcess(4243, gone: true)",
                                   "killedProcess(4243, gone: false)"}));
  std::cout << "hard stop: " << all.size() << " settings, " << sum.sequences << " sequences, " << sum.calls
            << " calls\n";
}

TEST(HardStopExhaustionTest, ProcedureAndTableAgreeInEverySequence) {
  compareAndReport(settings());
}

/// Half a minute: it runs only when --gtest_also_run_disabled_tests is given.
TEST(HardStopExhaustionTest, DISABLED_ProcedureAndTableAgreeInEveryLongerSequence) {
  compareAndReport(settings(7));
}

TEST(HardStopExhaustionTest, EveryStateAnswersEveryObservationOnce) {
  std::set<std::pair<State, Observation>> seen;
  for (const auto& row : hardStopTable())
    EXPECT_TRUE(seen.emplace(row.state, row.observation).second);
}

/// The comparison is only worth what it sees: with any one row led astray, it has to fall.
TEST(HardStopExhaustionTest, AnyWrongRowIsNoticed) {
  const Setting shortOne{
      .first = firsts[0], .ownGroup = 500, .grace = poll, .poll = poll, .reap = poll, .spareWait = 2 * poll};
  std::size_t wrongTables = 0;
  for (std::size_t row = 0; row < hardStopTable().size(); ++row) {
    for (std::size_t next = 0; next < stateCount; ++next) {
      auto table = hardStopTable();
      table[row].next = static_cast<State>(next);
      if (table == hardStopTable()) continue;
      ++wrongTables;
      EXPECT_NE(compareAll(table, {shortOne}).difference, "") << "row " << row << " to state " << next;
    }
  }
  std::cout << "hard stop: " << wrongTables << " wrong tables noticed\n";
}

}  // namespace
}  // namespace tamo::exhaustion

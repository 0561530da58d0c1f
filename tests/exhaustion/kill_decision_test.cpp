#include <array>
#include <gtest/gtest.h>
#include <iostream>
#include <limits>

#include "exhaustion/hard_stop_table.hpp"

/// Whom the kill is for, over every combination of telling pids and groups.
namespace tamo::exhaustion {
namespace {

constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
constexpr std::array<std::int32_t, 19> tellingIds{lowest, lowest + 1, -4242, -500,        -2,     -1,  0,
                                                  1,      2,          3,     499,         500,    501, 4241,
                                                  4242,   4243,       9999,  highest - 1, highest};

struct Sent {
  int count = 0;
  std::int32_t target = 0;
  bool isGroup = false;
};

/// The kill that follows at once, with no waits, when the look shows `last`.
HardStop::Outcome outcomeOfKill(const HardStop::Seen& last, std::int32_t ownGroup, Sent& sent) {
  const HardStop::Seen first{.pid = 31, .startMicros = last.startMicros, .group = 31};
  HardStop::Operations operations{
      .grace = {},
      .poll = {},
      .reap = {},
      .spareWait = {},
      .ownGroup = ownGroup,
      .look = [&](std::int32_t) { return std::optional(last); },
      .spare = [] { return std::optional<std::string>(); },
      .cancelled = [] { return false; },
      .signal = [&](std::int32_t target,
                    bool isGroup) { sent = {.count = sent.count + 1, .target = target, .isGroup = isGroup}; },
      .sleep = [](nanoseconds) {},
      .now = [] { return nanoseconds(0); },
  };
  return HardStop::run(first, operations);
}

HardStop::Outcome expectedOutcome(const HardStop::Seen& last, bool killsGroup) {
  if (killsGroup) return HardStop::KilledGroup{.group = last.group, .gone = false};
  return HardStop::KilledProcess{.pid = last.pid, .gone = false};
}

void checkKill(const HardStop::Seen& last, std::int32_t ownGroup) {
  Sent sent;
  const auto outcome = outcomeOfKill(last, ownGroup, sent);
  const bool killsGroup = tableKillsGroup(last, ownGroup);
  EXPECT_EQ(sent.count, 1);
  EXPECT_EQ(sent.isGroup, killsGroup);
  EXPECT_EQ(sent.target, killsGroup ? last.group : last.pid);
  EXPECT_EQ(outcome, expectedOutcome(last, killsGroup));
  EXPECT_FALSE(sent.isGroup && (sent.target <= 1 || sent.target == ownGroup));
}

TEST(KillDecisionTest, EveryCombinationHasTheTargetOfTheTable) {
  std::size_t combinations = 0;
  std::size_t groups = 0;
  for (const auto pid : tellingIds)
    for (const auto group : tellingIds)
      for (const auto ownGroup : tellingIds) {
        SCOPED_TRACE(testing::Message() << "pid " << pid << " group " << group << " own group " << ownGroup);
        const HardStop::Seen last{.pid = pid, .startMicros = 7, .group = group};
        checkKill(last, ownGroup);
        ++combinations;
        groups += tableKillsGroup(last, ownGroup) ? 1U : 0U;
      }
  // Eleven of the ids are above one, and each leads its group before eighteen others' eyes.
  EXPECT_EQ(groups, 11 * 18);
  std::cout << "kill decision: " << combinations << " combinations, " << groups << " of them kill a group\n";
}

}  // namespace
}  // namespace tamo::exhaustion

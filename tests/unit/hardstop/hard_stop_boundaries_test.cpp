#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>

#include "hardstop/hard_stop.hpp"
#include "unit/hardstop/hard_stop_rig.hpp"

/// The hard stop's tables: the edge of each deadline, and whom the kill goes to.
namespace tamo::HardStop {
namespace {

using namespace std::chrono_literals;
using std::chrono::nanoseconds;

/// One sleep that ends just before, at or just after a deadline of 100 milliseconds, and how many looks are
/// made within the watch then.
struct Boundary {
  const char* name;
  nanoseconds sleep;
  int looks;
};

void PrintTo(const Boundary& one, std::ostream* out) {
  *out << one.name;
}

class DeadlineTest : public HardStopRig, public ::testing::WithParamInterface<Boundary> {
 protected:
  void SetUp() override { operations.poll = GetParam().sleep; }
};

TEST_P(DeadlineTest, OfTheGraceWatchIsStrict) {
  operations.grace = 100ms;
  operations.reap = 0ns;
  EXPECT_EQ(run(first, operations), Outcome(KilledGroup{4242, false}));
  EXPECT_EQ(count("cancelled?"), GetParam().looks + 1);
  EXPECT_EQ(count("look 4242"), GetParam().looks + 2);
}

TEST_P(DeadlineTest, OfTheReapWatchIsStrict) {
  operations.grace = 0ns;
  operations.reap = 100ms;
  EXPECT_EQ(run(first, operations), Outcome(KilledGroup{4242, false}));
  EXPECT_EQ(count("look 4242"), 1 + GetParam().looks + 1);
}

TEST_P(DeadlineTest, OfTheSpareWatchIsStrict) {
  operations.grace = 0ns;
  operations.spareWait = 100ms;
  reason = "young_core";
  EXPECT_EQ(run(first, operations), Outcome(Spared{"young_core", false}));
  EXPECT_EQ(count("look 4242"), 1 + GetParam().looks + 1);
}

class PollTest : public HardStopRig {};

TEST_F(PollTest, IsNotShortenedForADeadlineThatIsNearer) {
  operations.grace = 120ms;
  operations.reap = 70ms;
  EXPECT_EQ(run(first, operations), Outcome(KilledGroup{4242, false}));
  EXPECT_EQ(time, 150ms + 100ms);
  EXPECT_EQ(count("sleep 50 ms"), 3 + 2);
}

TEST_F(PollTest, IsWhatTheCallerSays) {
  operations.poll = 30ms;
  operations.grace = operations.reap = 60ms;
  EXPECT_EQ(run(first, operations), Outcome(KilledGroup{4242, false}));
  EXPECT_EQ(count("sleep 30 ms"), 2 + 2);
  EXPECT_EQ(time, 120ms);
}

INSTANTIATE_TEST_SUITE_P(Sleeps, DeadlineTest,
                         ::testing::Values(Boundary{"JustBefore", 100ms - 1ns, 2}, Boundary{"At", 100ms, 1},
                                           Boundary{"JustAfter", 100ms + 1ns, 1}),
                         [](const auto& one) { return one.param.name; });

/// A deadline that wrapped would lie in the past, and the process would be killed without its grace period.
class FarDeadlineDeathTest : public HardStopRig {
 protected:
  void SetUp() override { operations.grace = operations.reap = operations.spareWait = 0ns; }
};

TEST_F(FarDeadlineDeathTest, OfTheGraceWatchIsFatal) {
  operations.grace = 2s;
  time = nanoseconds::max() - 2s + 1ns;
  EXPECT_DEATH(static_cast<void>(run(first, operations)), "fatal: a deadline overflows");
}

TEST_F(FarDeadlineDeathTest, OfTheReapWatchIsFatal) {
  operations.reap = 2s;
  time = nanoseconds::max() - 2s + 1ns;
  EXPECT_DEATH(static_cast<void>(run(first, operations)), "fatal: a deadline overflows");
}

TEST_F(FarDeadlineDeathTest, OfTheSpareWatchIsFatal) {
  operations.spareWait = 20s;
  reason = "young_core";
  time = nanoseconds::max() - 20s + 1ns;
  EXPECT_DEATH(static_cast<void>(run(first, operations)), "fatal: a deadline overflows");
}

TEST_F(FarDeadlineDeathTest, ThatJustFitsIsWaitedFor) {
  operations.grace = 2s;
  time = nanoseconds::max() - 2s;
  goneAt(time + 1s);
  EXPECT_EQ(run(first, operations), Outcome(Exited()));
}

/// What the look after the grace period shows, this program's own group, and who is signalled then.
struct TargetCase {
  const char* name;
  std::int32_t pid;
  std::int32_t group;
  std::int32_t ownGroup;
  const char* kill;
  Outcome outcome;
};

void PrintTo(const TargetCase& one, std::ostream* out) {
  *out << one.name;
}

class TargetTest : public HardStopRig, public ::testing::WithParamInterface<TargetCase> {};

TEST_P(TargetTest, IsTheGroupOnlyOfALeaderThatIsNotOurs) {
  process->pid = GetParam().pid;
  process->group = GetParam().group;
  operations.ownGroup = GetParam().ownGroup;
  EXPECT_EQ(run(first, operations), GetParam().outcome);
  EXPECT_EQ(count(GetParam().kill), 1);
  EXPECT_THAT(trace, testing::Contains(testing::StartsWith("kill")).Times(1));
  EXPECT_EQ(count("look 4242"), 40 + 1 + 40 + 1);
}

INSTANTIATE_TEST_SUITE_P(
    Looks, TargetTest,
    ::testing::Values(
        TargetCase{"ALeader", 4242, 4242, 500, "kill group 4242", KilledGroup{4242, false}},
        TargetCase{"ALeaderOfOurOwnGroup", 4242, 4242, 4242, "kill 4242", KilledProcess{4242, false}},
        TargetCase{"AMemberOfAnothersGroup", 4242, 77, 500, "kill 4242", KilledProcess{4242, false}},
        TargetCase{"AMemberOfOurGroup", 4242, 500, 500, "kill 4242", KilledProcess{4242, false}},
        TargetCase{"AMemberOfGroupZero", 4242, 0, 500, "kill 4242", KilledProcess{4242, false}},
        TargetCase{"ALeaderOfGroupOne", 1, 1, 500, "kill 1", KilledProcess{1, false}},
        TargetCase{"ALeaderOfGroupZero", 0, 0, 500, "kill 0", KilledProcess{0, false}},
        TargetCase{"ALeaderOfGroupTwo", 2, 2, 500, "kill group 2", KilledGroup{2, false}},
        TargetCase{"ALeaderUnderThePidOfTheLook", 43, 43, 500, "kill group 43", KilledGroup{43, false}},
        TargetCase{"AMemberUnderThePidOfTheLook", 43, 7, 500, "kill 43", KilledProcess{43, false}}),
    [](const auto& one) { return one.param.name; });

}  // namespace
}  // namespace tamo::HardStop

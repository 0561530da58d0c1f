#include "hardstop/hard_stop.hpp"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

#include "unit/hardstop/hard_stop_rig.hpp"

namespace tamo::HardStop {
namespace {

using namespace std::chrono_literals;
using std::chrono::nanoseconds;

/// Trace pieces written one after the other.
Trace operator+(Trace left, const Trace& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

const Trace aliveInGraceWatch{"now", "look 4242", "cancelled?", "sleep 50 ms"};
const Trace aliveInLaterWatch{"now", "look 4242", "sleep 50 ms"};
/// A watch's deadline is computed, and the grace period passes with two looks.
const Trace graceOf100Milliseconds = Trace{"now"} + aliveInGraceWatch + aliveInGraceWatch + Trace{"now"};
const Trace aliveAtTheDecision{"look 4242", "cancelled?", "spare?"};
/// A wait of 100 milliseconds in which nothing changes, with the look after it.
const Trace fullLaterWatch = Trace{"now"} + aliveInLaterWatch + aliveInLaterWatch + Trace{"now", "look 4242"};

class HardStopTest : public HardStopRig {};

TEST_F(HardStopTest, TheTimingsAreFixed) {
  EXPECT_EQ(grace, 2s);
  EXPECT_EQ(poll, 50ms);
  EXPECT_EQ(reap, 2s);
  EXPECT_EQ(spareWait, 20s);
}

TEST_F(HardStopTest, AProcessGoneAtTheFirstLookHasExited) {
  process.reset();
  EXPECT_EQ(run(first, operations), Outcome(Exited()));
  EXPECT_EQ(trace, (Trace{"now", "now", "look 4242"}));
}

TEST_F(HardStopTest, APidReusedInTheGraceWatchHasExited) {
  at(100ms, [this] { process->startMicros = 1001; });
  EXPECT_EQ(run(first, operations), Outcome(Exited()));
  EXPECT_EQ(trace, Trace{"now"} + aliveInGraceWatch + aliveInGraceWatch + Trace({"now", "look 4242"}));
}

TEST_F(HardStopTest, AZombieInTheGraceWatchHasExited) {
  at(50ms, [this] { process->zombie = true; });
  EXPECT_EQ(run(first, operations), Outcome(Exited()));
  EXPECT_EQ(trace, Trace{"now"} + aliveInGraceWatch + Trace({"now", "look 4242"}));
}

TEST_F(HardStopTest, CalledOffInTheGraceWatchEndsAtTheNextLook) {
  calledOffAt(50ms);
  EXPECT_EQ(run(first, operations), Outcome(Cancelled()));
  EXPECT_EQ(trace, Trace{"now"} + aliveInGraceWatch + Trace({"now", "look 4242", "cancelled?"}));
}

TEST_F(HardStopTest, GoneWinsOverCalledOffInTheGraceWatch) {
  goneAt(50ms);
  calledOffAt(50ms);
  EXPECT_EQ(run(first, operations), Outcome(Exited()));
  EXPECT_EQ(count("cancelled?"), 1);
}

TEST_F(HardStopTest, GoneAtTheGraceDeadlineHasExitedAndNothingMoreIsAsked) {
  waits100Milliseconds();
  goneAt(100ms);
  calledOffAt(100ms);
  EXPECT_EQ(run(first, operations), Outcome(Exited()));
  EXPECT_EQ(trace, graceOf100Milliseconds + Trace{"look 4242"});
}

TEST_F(HardStopTest, CalledOffAtTheGraceDeadlineWinsOverSparing) {
  waits100Milliseconds();
  reason = "young_core";
  calledOffAt(100ms);
  EXPECT_EQ(run(first, operations), Outcome(Cancelled()));
  EXPECT_EQ(trace, graceOf100Milliseconds + Trace({"look 4242", "cancelled?"}));
}

TEST_F(HardStopTest, AGroupLeaderIsKilledWithItsGroup) {
  waits100Milliseconds();
  onSignal = [this] { process.reset(); };
  EXPECT_EQ(run(first, operations), Outcome(KilledGroup{4242, true}));
  EXPECT_EQ(trace, graceOf100Milliseconds + aliveAtTheDecision +
                       Trace({"kill group 4242", "now", "now", "look 4242", "look 4242"}));
}

TEST_F(HardStopTest, AProcessThatSurvivesTheKillIsNotSignalledAgain) {
  waits100Milliseconds();
  EXPECT_EQ(run(first, operations), Outcome(KilledGroup{4242, false}));
  EXPECT_EQ(trace, graceOf100Milliseconds + aliveAtTheDecision + Trace{"kill group 4242"} + fullLaterWatch);
}

TEST_F(HardStopTest, ASparedProcessThatStaysIsSparedAndNotGone) {
  waits100Milliseconds();
  reason = "young_core";
  EXPECT_EQ(run(first, operations), Outcome(Spared{"young_core", false}));
  EXPECT_EQ(trace, graceOf100Milliseconds + aliveAtTheDecision + fullLaterWatch);
}

TEST_F(HardStopTest, ASparedProcessThatExitsAfterFiveSecondsIsGoneThen) {
  reason = "revert_restoring";
  goneAt(2s + 5s);
  EXPECT_EQ(run(first, operations), Outcome(Spared{"revert_restoring", true}));
  EXPECT_EQ(time, 2s + 5s);
}

TEST_F(HardStopTest, ASparedProcessThatStaysIsWatchedForTwentySeconds) {
  reason = "revert_release";
  EXPECT_EQ(run(first, operations), Outcome(Spared{"revert_release", false}));
  EXPECT_EQ(time, 2s + 20s);
  EXPECT_EQ(count("sleep 50 ms"), 40 + 400);
}

TEST_F(HardStopTest, AKilledProcessIsWatchedForTwoSeconds) {
  EXPECT_EQ(run(first, operations), Outcome(KilledGroup{4242, false}));
  EXPECT_EQ(time, 2s + 2s);
  EXPECT_EQ(count("sleep 50 ms"), 40 + 40);
  EXPECT_EQ(count("look 4242"), 40 + 1 + 40 + 1);
}

TEST_F(HardStopTest, CalledOffDuringTheSpareQuestionHasNoEffect) {
  waits100Milliseconds();
  onSpare = [this] { calledOff = true; };
  EXPECT_EQ(run(first, operations), Outcome(KilledGroup{4242, false}));
  EXPECT_EQ(count("cancelled?"), 3);
}

TEST_F(HardStopTest, CalledOffInTheSpareWatchHasNoEffect) {
  reason = "young_core";
  calledOffAt(3s);
  EXPECT_EQ(run(first, operations), Outcome(Spared{"young_core", false}));
  EXPECT_EQ(count("cancelled?"), 40 + 1);
}

TEST_F(HardStopTest, CalledOffInTheReapWatchHasNoEffect) {
  calledOffAt(3s);
  EXPECT_EQ(run(first, operations), Outcome(KilledGroup{4242, false}));
  EXPECT_EQ(count("cancelled?"), 40 + 1);
}

TEST_F(HardStopTest, AReasonIsJudgedAfterTheGracePeriodAndOnce) {
  reason = "revert_restoring";
  at(1s, [this] { reason.reset(); });
  at(3s, [this] { reason = "young_core"; });
  EXPECT_EQ(run(first, operations), Outcome(KilledGroup{4242, false}));
  EXPECT_EQ(count("spare?"), 1);
}

TEST_F(HardStopTest, AReasonOfNoWordsSparesLikeAnyOther) {
  waits100Milliseconds();
  reason = "";
  EXPECT_EQ(run(first, operations), Outcome(Spared{"", false}));
  EXPECT_EQ(trace, graceOf100Milliseconds + aliveAtTheDecision + fullLaterWatch);
}

TEST_F(HardStopTest, TheKilledProcessThatTurnsZombieHasVanished) {
  onSignal = [this] { process->zombie = true; };
  EXPECT_EQ(run(first, operations), Outcome(KilledGroup{4242, true}));
}

TEST_F(HardStopTest, TheKilledProcessWhosePidIsReusedHasVanished) {
  onSignal = [this] { process->startMicros = 7; };
  EXPECT_EQ(run(first, operations), Outcome(KilledGroup{4242, true}));
}

/// Lets each look fail that its number, counted from 1, is named for.
std::function<void()> failingLooks(std::optional<Seen>& process, const Seen& seen, std::vector<int> failing) {
  return [&process, seen, failing, number = 0]() mutable {
    ++number;
    const bool fails = std::find(failing.begin(), failing.end(), number) != failing.end();
    process = fails ? std::nullopt : std::optional(seen);
  };
}

TEST_F(HardStopTest, TheReapResultIsTakenFromOneFurtherLook) {
  waits100Milliseconds();
  onLook = failingLooks(process, first, {4});
  EXPECT_EQ(run(first, operations), Outcome(KilledGroup{4242, false}));
  EXPECT_EQ(count("look 4242"), 5);
}

TEST_F(HardStopTest, TheSpareResultIsTakenFromOneFurtherLook) {
  waits100Milliseconds();
  reason = "young_core";
  onLook = failingLooks(process, first, {4});
  EXPECT_EQ(run(first, operations), Outcome(Spared{"young_core", false}));
  EXPECT_EQ(count("look 4242"), 5);
}

TEST_F(HardStopTest, GoneOnlyAfterTheReapDeadlineStillCounts) {
  waits100Milliseconds();
  goneAt(200ms);
  EXPECT_EQ(run(first, operations), Outcome(KilledGroup{4242, true}));
  EXPECT_EQ(time, 200ms);
}

TEST_F(HardStopTest, TheFirstLooksGroupAndZombieAreNotUsed) {
  const Seen odd{4242, 1000, 1, true};
  EXPECT_EQ(run(odd, operations), Outcome(KilledGroup{4242, false}));
}

TEST_F(HardStopTest, TheTargetIsChosenFromTheLookAfterTheGracePeriod) {
  at(1950ms, [this] { process->group = 77; });
  at(2050ms, [this] { process->group = 4242; });
  EXPECT_EQ(run(first, operations), Outcome(KilledProcess{4242, false}));
  EXPECT_EQ(count("kill 4242"), 1);
}

TEST_F(HardStopTest, AGraceOfZeroStillLooksOnce) {
  waits100Milliseconds();
  operations.grace = 0ns;
  EXPECT_EQ(run(first, operations), Outcome(KilledGroup{4242, false}));
  EXPECT_EQ(trace, Trace({"now", "now"}) + aliveAtTheDecision + Trace{"kill group 4242"} + fullLaterWatch);
}

TEST_F(HardStopTest, ANegativeGraceStillLooksOnce) {
  operations.grace = -5s;
  process.reset();
  EXPECT_EQ(run(first, operations), Outcome(Exited()));
  EXPECT_EQ(trace, (Trace{"now", "now", "look 4242"}));
}

TEST_F(HardStopTest, WaitsOfZeroLookOnceAfterTheKill) {
  operations.grace = operations.reap = 0ns;
  EXPECT_EQ(run(first, operations), Outcome(KilledGroup{4242, false}));
  EXPECT_EQ(trace, Trace({"now", "now"}) + aliveAtTheDecision +
                       Trace({"kill group 4242", "now", "now", "look 4242"}));
}

TEST_F(HardStopTest, AClockThatJumpsPastTheGraceDeadlineDuringALookEndsTheWatchAfterItsSleep) {
  waits100Milliseconds();
  onLook = [this] { time = std::max<nanoseconds>(time, 10s); };
  EXPECT_EQ(run(first, operations), Outcome(KilledGroup{4242, false}));
  EXPECT_EQ(trace, Trace{"now"} + aliveInGraceWatch + Trace{"now"} + aliveAtTheDecision +
                       Trace{"kill group 4242"} + fullLaterWatch);
}

TEST_F(HardStopTest, AClockThatJumpsDuringTheSpareQuestionMovesTheSpareDeadlineAlong) {
  waits100Milliseconds();
  reason = "young_core";
  onSpare = [this] { time += 10s; };
  EXPECT_EQ(run(first, operations), Outcome(Spared{"young_core", false}));
  EXPECT_EQ(trace, graceOf100Milliseconds + aliveAtTheDecision + fullLaterWatch);
}

TEST_F(HardStopTest, AClockThatJumpsDuringTheSignalMovesTheReapDeadlineAlong) {
  waits100Milliseconds();
  onSignal = [this] { time += 10s; };
  EXPECT_EQ(run(first, operations), Outcome(KilledGroup{4242, false}));
  EXPECT_EQ(trace, graceOf100Milliseconds + aliveAtTheDecision + Trace{"kill group 4242"} + fullLaterWatch);
}

}  // namespace
}  // namespace tamo::HardStop

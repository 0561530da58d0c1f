#include "hardstop/hard_stopping.hpp"

#include <gtest/gtest.h>
#include <thread>

#include "unit/hardstop/hard_stopping_rig.hpp"

namespace tamo {
namespace {

using namespace std::chrono_literals;
using platform::Nothing;
using platform::Task;

class HardStoppingTest : public HardStoppingRig {};

TEST_F(HardStoppingTest, EverythingIsGatheredInOrderBeforeTheWatcherAndTheOperation) {
  auto task = hardStops.hardStopping<std::int32_t>(gives(0), zero);
  task.start();
  EXPECT_EQ(fake.ledger.texts(), (Texts{"job: print", "kernel: look 4242", "user: data directory",
                                        "files: read /Applications/Tamo.app/Contents/Info.plist",
                                        "kernel: look 900", "threads: detach", "operation: runs"}));
}

TEST_F(HardStoppingTest, NothingIsDoneBeforeTheTaskStarts) {
  auto task = hardStops.hardStopping<std::int32_t>(gives(0), zero);
  EXPECT_EQ(fake.ledger.texts(), Texts());
}

TEST_F(HardStoppingTest, ACoreThatExitsInTheGracePeriodHasExited) {
  fake.clock.at(1s, [this] { coreGone(); });
  EXPECT_EQ(stopped(gives(0)), 0);
  EXPECT_EQ(hardStops.hardStop(), "exited");
  EXPECT_EQ(fake.ledger.textsOf({"log", "kernel: kill"}), Texts{"log: default hardstop pid 4242: exited"});
  EXPECT_EQ(fake.clock.monotonicNow(), 1s);
}

TEST_F(HardStoppingTest, ACoreThatStaysIsKilledWithItsGroupAtTheGraceDeadline) {
  EXPECT_EQ(stopped(gives(0)), 0);
  EXPECT_EQ(hardStops.hardStop(), "killedGroup(4242, gone: true)");
  EXPECT_EQ(fake.ledger.textsOf({"kernel: kill"}), Texts{"kernel: kill group 4242"});
  EXPECT_EQ(fake.clock.monotonicNow(), 2s);
}

TEST_F(HardStoppingTest, ACoreThatDoesNotLeadItsGroupIsKilledAlone) {
  fake.kernelProcesses.processes[4242].group = 1;
  EXPECT_EQ(stopped(gives(0)), 0);
  EXPECT_EQ(hardStops.hardStop(), "killedProcess(4242, gone: true)");
  EXPECT_EQ(fake.ledger.textsOf({"kernel: kill"}), Texts{"kernel: kill 4242"});
}

TEST_F(HardStoppingTest, OurOwnGroupIsNeverKilled) {
  fake.kernelProcesses.group = 4242;
  EXPECT_EQ(stopped(gives(0)), 0);
  EXPECT_EQ(hardStops.hardStop(), "killedProcess(4242, gone: true)");
  EXPECT_EQ(fake.ledger.textsOf({"kernel: kill"}), Texts{"kernel: kill 4242"});
}

TEST_F(HardStoppingTest, ACoreThatSurvivesTheKillIsWatchedForTwoSecondsMore) {
  fake.kernelProcesses.onKillGroup = [](std::int32_t) {};
  EXPECT_EQ(stopped(gives(0)), 0);
  EXPECT_EQ(hardStops.hardStop(), "killedGroup(4242, gone: false)");
  EXPECT_EQ(fake.clock.monotonicNow(), 4s);
  EXPECT_EQ(fake.ledger.count("clock: sleep 50 ms"), 80U);
}

TEST_F(HardStoppingTest, AStopThatWasNotAskedCallsTheWatcherOffAtItsFirstLook) {
  EXPECT_EQ(stopped(gives(5)), 5);
  EXPECT_EQ(hardStops.hardStop(), "cancelled stopFailed");
  EXPECT_EQ(fake.ledger.textsOf({"log", "kernel: kill"}), Texts{"log: default hardstop pid 4242: cancelled"});
  EXPECT_EQ(fake.clock.monotonicNow(), 0s);
}

TEST_F(HardStoppingTest, AStopThatTurnsOutNotAskedCallsTheWatcherOffAtItsNextLook) {
  EXPECT_EQ(stopped(givesAt(1010ms, 5)), 5);
  EXPECT_EQ(hardStops.hardStop(), "cancelled stopFailed");
  EXPECT_EQ(fake.clock.monotonicNow(), 1050ms);
  EXPECT_EQ(fake.ledger.count("kernel: kill"), 0U);
}

TEST_F(HardStoppingTest, AFailedOperationCallsTheWatcherOffAndItsErrorIsPassedOn) {
  EXPECT_EQ(raised(fails()), "no such stop");
  EXPECT_EQ(hardStops.hardStop(), "cancelled stopFailed");
  EXPECT_EQ(fake.ledger.textsOf({"log"}), Texts{"log: default hardstop pid 4242: cancelled"});
}

TEST_F(HardStoppingTest, AnOperationThatFailsInTheGraceWatchCallsTheWatcherOff) {
  EXPECT_EQ(raised(failsAt(1s)), "no such stop");
  EXPECT_EQ(hardStops.hardStop(), "cancelled stopFailed");
}

TEST_F(HardStoppingTest, AnOperationThatRaisesBeforeItsTaskCountsAsFailed) {
  const Operation operation = []() -> Task<std::int32_t> { throw platform::Error("Domain", 7, "at once"); };
  EXPECT_EQ(raised(operation), "at once");
  EXPECT_EQ(hardStops.hardStop(), "cancelled stopFailed");
}

TEST_F(HardStoppingTest, AFailureAfterTheKillOnlyChangesTheNotedText) {
  fake.kernelProcesses.onKillGroup = [this](std::int32_t) { fake.clock.at(3s, [this] { coreGone(); }); };
  EXPECT_EQ(raised(failsAt(2500ms)), "no such stop");
  EXPECT_EQ(hardStops.hardStop(), "killedGroup(4242, gone: true) stopFailed");
  EXPECT_EQ(fake.ledger.textsOf({"log"}),
            Texts{"log: default hardstop pid 4242: killedGroup(4242, gone: true)"});
}

TEST_F(HardStoppingTest, AFailureInTheSpareWaitOnlyChangesTheNotedText) {
  markerFile("core.db.revert.pending");
  EXPECT_EQ(raised(failsAt(10s)), "no such stop");
  EXPECT_EQ(hardStops.hardStop(), "spared(\"revert_restoring\", gone: false) stopFailed");
  EXPECT_EQ(fake.clock.monotonicNow(), 22s);
}

TEST_F(HardStoppingTest, TheOperationsEndAloneDoesNotEndTheHardStop) {
  auto task = hardStops.hardStopping<std::int32_t>(fails(), zero);
  task.start();
  fake.mainQueue.runUntilIdle();
  EXPECT_FALSE(task.done());
  EXPECT_EQ(hardStops.hardStop(), std::nullopt);
}

TEST_F(HardStoppingTest, TheWatchersEndAloneDoesNotEndTheHardStop) {
  auto task = hardStops.hardStopping<std::int32_t>(givesAt(9s, 0), zero);
  task.start();
  coreGone();
  fake.threads.runAll();
  fake.mainQueue.runUntilIdle();
  EXPECT_FALSE(task.done());
  EXPECT_EQ(hardStops.hardStop(), std::nullopt);
  fake.clock.advanceTo(9s);
  fake.mainQueue.runUntilIdle();
  ASSERT_TRUE(task.done());
  EXPECT_EQ(hardStops.hardStop(), "exited");
}

TEST_F(HardStoppingTest, TheWatchersOutcomeIsTakenUpInATurnOfTheMainQueue) {
  auto task = hardStops.hardStopping<std::int32_t>(gives(0), zero);
  task.start();
  fake.threads.runAll();
  EXPECT_FALSE(task.done());
  EXPECT_EQ(hardStops.hardStop(), std::nullopt);
  fake.mainQueue.runUntilIdle();
  EXPECT_TRUE(task.done());
}

TEST_F(HardStoppingTest, ANothingIsGivenBackWhenItIsAlwaysAsked) {
  const std::function<bool(const Nothing&)> always = [](const Nothing&) { return true; };
  const std::function<Task<Nothing>()> operation = []() -> Task<Nothing> { co_return Nothing(); };
  finished(hardStops.hardStopping<Nothing>(operation, always));
  EXPECT_EQ(hardStops.hardStop(), "killedGroup(4242, gone: true)");
}

TEST_F(HardStoppingTest, EveryHardStopHasAFlagOfItsOwn) {
  EXPECT_EQ(stopped(gives(5)), 5);
  EXPECT_EQ(stopped(gives(0)), 0);
  EXPECT_EQ(hardStops.hardStop(), "killedGroup(4242, gone: true)");
}

TEST_F(HardStoppingTest, WithoutAThreadForTheWatcherTheOperationRunsAlone) {
  fake.threads.available = false;
  EXPECT_EQ(stopped(gives(5)), 5);
  EXPECT_EQ(hardStops.hardStop(), std::nullopt);
  EXPECT_EQ(fake.ledger.texts().back(), "operation: runs");
  EXPECT_EQ(fake.ledger.count("log"), 0U);
}

TEST_F(HardStoppingTest, WithoutAThreadForTheWatcherAnErrorIsPassedOn) {
  fake.threads.available = false;
  EXPECT_EQ(raised(fails()), "no such stop");
  EXPECT_EQ(hardStops.hardStop(), std::nullopt);
}

TEST_F(HardStoppingTest, OffTheMainThreadAHardStopIsFatal) {
  EXPECT_DEATH(std::thread([this] {
                 auto task = hardStops.hardStopping<std::int32_t>(gives(0), zero);
                 task.start();
               }).join(),
               "fatal: a hard stop entered off the main thread");
}

class AskedTest : public HardStoppingRig {
 protected:
  std::int32_t stoppedAsking(Asked& asked, const Operation& operation) {
    const Predicate predicate = [&asked](const std::int32_t&) { return asked(); };
    return finished(hardStops.hardStopping<std::int32_t>(operation, predicate));
  }
};

TEST_F(AskedTest, IsEvaluatedTwiceForAYes) {
  Asked asked({true});
  EXPECT_EQ(stoppedAsking(asked, gives(7)), 7);
  EXPECT_EQ(asked.times(), 2U);
  EXPECT_EQ(hardStops.hardStop(), "killedGroup(4242, gone: true)");
}

TEST_F(AskedTest, IsEvaluatedTwiceForANo) {
  Asked asked({false});
  EXPECT_EQ(stoppedAsking(asked, gives(0)), 0);
  EXPECT_EQ(asked.times(), 2U);
  EXPECT_EQ(hardStops.hardStop(), "cancelled stopFailed");
}

TEST_F(AskedTest, CallsOffByItsFirstAnswerAndNotesByItsSecond) {
  Asked asked({false, true});
  EXPECT_EQ(stoppedAsking(asked, gives(0)), 0);
  EXPECT_EQ(hardStops.hardStop(), "cancelled");
}

TEST_F(AskedTest, IsEvaluatedAgainOnlyAfterTheWatcher) {
  Asked asked({true});
  const Predicate predicate = [&asked](const std::int32_t&) { return asked(); };
  auto task = hardStops.hardStopping<std::int32_t>(gives(0), predicate);
  task.start();
  fake.threads.runAll();
  EXPECT_EQ(asked.times(), 1U);
  fake.mainQueue.runUntilIdle();
  EXPECT_EQ(asked.times(), 2U);
}

TEST_F(AskedTest, IsNotEvaluatedForAnError) {
  Asked asked({true});
  EXPECT_THROW(stoppedAsking(asked, fails()), platform::Error);
  EXPECT_EQ(asked.times(), 0U);
}

TEST_F(AskedTest, IsNotEvaluatedWithoutACore) {
  Asked asked({true});
  coreGone();
  EXPECT_EQ(stoppedAsking(asked, gives(3)), 3);
  EXPECT_EQ(asked.times(), 0U);
}

class PlainPathTest : public HardStoppingRig {
 protected:
  const Texts alone{"job: print", "operation: runs"};
};

TEST_F(PlainPathTest, IsTakenWithoutAPrint) {
  print.reset();
  EXPECT_EQ(stopped(gives(5)), 5);
  EXPECT_EQ(fake.ledger.texts(), alone);
  EXPECT_EQ(hardStops.hardStop(), std::nullopt);
}

TEST_F(PlainPathTest, IsTakenWithoutATopLevelPid) {
  print = "gui/501/studio.pell.tamo.core = {\n\tendpoints = {\n\t\tpid = 4242\n\t}\n}\n";
  EXPECT_EQ(stopped(gives(5)), 5);
  EXPECT_EQ(fake.ledger.texts(), alone);
  EXPECT_EQ(hardStops.hardStop(), std::nullopt);
}

TEST_F(PlainPathTest, IsTakenWhenThePidsProcessIsNoMore) {
  coreGone();
  EXPECT_EQ(stopped(gives(5)), 5);
  EXPECT_EQ(fake.ledger.texts(), (Texts{"job: print", "kernel: look 4242", "operation: runs"}));
  EXPECT_EQ(hardStops.hardStop(), std::nullopt);
}

TEST_F(PlainPathTest, PassesTheErrorOn) {
  print.reset();
  EXPECT_EQ(raised(fails()), "no such stop");
  EXPECT_EQ(fake.ledger.texts(), alone);
}

TEST_F(PlainPathTest, LeavesAnEarlierNoteAsItWas) {
  EXPECT_EQ(stopped(gives(5)), 5);
  print.reset();
  EXPECT_EQ(stopped(gives(0)), 0);
  EXPECT_EQ(hardStops.hardStop(), "cancelled stopFailed");
  EXPECT_EQ(fake.ledger.count("log"), 1U);
}

TEST_F(PlainPathTest, IsNotTakenForAZombieWhichTheWatcherFindsGone) {
  fake.kernelProcesses.processes[4242].zombie = true;
  EXPECT_EQ(stopped(gives(0)), 0);
  EXPECT_EQ(hardStops.hardStop(), "exited");
}

TEST_F(PlainPathTest, GivesANothing) {
  print.reset();
  const std::function<bool(const Nothing&)> always = [](const Nothing&) { return true; };
  const std::function<Task<Nothing>()> operation = []() -> Task<Nothing> { co_return Nothing(); };
  finished(hardStops.hardStopping<Nothing>(operation, always));
  EXPECT_EQ(fake.ledger.texts(), Texts{"job: print"});
}

class NoteTest : public HardStoppingRig {};

TEST_F(NoteTest, KeepsTheSuffixOutOfTheLog) {
  hardStops.note(HardStop::KilledProcess{4242, false}, 4242, true);
  EXPECT_EQ(hardStops.hardStop(), "killedProcess(4242, gone: false) stopFailed");
  EXPECT_EQ(fake.ledger.texts(), Texts{"log: default hardstop pid 4242: killedProcess(4242, gone: false)"});
}

TEST_F(NoteTest, ReplacesWhatWasThere) {
  hardStops.note(HardStop::Cancelled(), 4242, true);
  hardStops.note(HardStop::Exited(), 4243, false);
  EXPECT_EQ(hardStops.hardStop(), "exited");
  EXPECT_EQ(fake.ledger.texts(),
            (Texts{"log: default hardstop pid 4242: cancelled", "log: default hardstop pid 4243: exited"}));
}

TEST_F(NoteTest, OffTheMainThreadIsFatal) {
  EXPECT_DEATH(std::thread([this] { hardStops.note(HardStop::Exited(), 1, false); }).join(),
               "fatal: a hard stop's note entered off the main thread");
}

}  // namespace
}  // namespace tamo

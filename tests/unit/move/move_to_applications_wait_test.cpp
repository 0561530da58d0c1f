#include <gtest/gtest.h>
#include <thread>

#include "unit/move/move_rig.hpp"

namespace tamo {
namespace {

using namespace std::chrono_literals;

/// The wait for the copy to quit and the opening that follows it.
class MoveWaitTest : public ::testing::Test {
 protected:
  /// Moves; when the installed copy was opened.
  std::chrono::nanoseconds opened() {
    EXPECT_TRUE(rig.move());
    EXPECT_EQ(rig.ledger.count("workspace: open /Applications/Tamo.app"), 1U);
    return rig.openedAt();
  }
  [[nodiscard]] std::size_t looks() const { return rig.ledger.count("workspace: list"); }
  /// The user sets the wall clock.
  void clockIsSet(std::chrono::nanoseconds moment, std::chrono::nanoseconds by) {
    rig.clock.at(moment, [this, by] {
      rig.clock.wallAtZero += std::chrono::duration_cast<std::chrono::system_clock::duration>(by);
    });
  }

  MoveRig rig;
};

TEST_F(MoveWaitTest, WhenNothingRunsTheInstalledCopyIsOpenedAtOnce) {
  EXPECT_EQ(opened(), 0s);
  EXPECT_EQ(looks(), 1U);
}

TEST_F(MoveWaitTest, TheListIsReadAfreshUntilTheCopyHasQuit) {
  rig.runs(MoveRig::downloads);
  rig.quitsAt(10100ms);
  EXPECT_EQ(opened(), 10250ms);
  EXPECT_EQ(looks(), 42U);
}

TEST_F(MoveWaitTest, ACopyThatStartsOnceMoreIsNotWaitedForTwice) {
  rig.runs(MoveRig::downloads);
  rig.quitsAt(100ms);
  rig.clock.at(300ms, [this] { rig.runs(MoveRig::downloads); });
  EXPECT_EQ(opened(), 250ms);
}

TEST_F(MoveWaitTest, TheWaitSuspendsAndNeverBlocks) {
  rig.runs(MoveRig::downloads);
  rig.quitsAt(10100ms);
  opened();
  EXPECT_EQ(rig.ledger.count("queue: after 250 ms"), 41U);
  EXPECT_EQ(rig.ledger.count("clock: sleep"), 0U);
}

TEST_F(MoveWaitTest, ACopyThatNeverQuitsIsWaitedForThirtySeconds) {
  rig.runs(MoveRig::downloads);
  EXPECT_EQ(opened(), 30s);
  EXPECT_EQ(looks(), 120U);
}

TEST_F(MoveWaitTest, ACopyThatTakesItsTimeTakesNothingFromTheThirtySeconds) {
  rig.processes.once({"/usr/bin/ditto"}, {.runsFor = 20s});
  rig.clock.wallAtZero += 1000h;
  rig.runs(MoveRig::downloads);
  EXPECT_EQ(opened(), 50s);
}

TEST_F(MoveWaitTest, ALimitThatNoClockReachesIsFatal) {
  rig.clock.wallAtZero = std::chrono::system_clock::time_point::max() - 29s;
  EXPECT_DEATH(rig.move(), "fatal: a deadline overflows");
}

TEST_F(MoveWaitTest, AToolThatTakesItsTimeAfterTheCopyTakesNothingFromThemEither) {
  rig.processes.once({"/usr/bin/xattr"}, {.runsFor = 40s});
  rig.runs(MoveRig::downloads);
  EXPECT_EQ(opened(), 70s);
}

TEST_F(MoveWaitTest, TheThirtySecondsBeginWhenTheResultIsWritten) {
  rig.files.beforeWriting = [this] { rig.clock.advanceTo(7s); };
  rig.runs(MoveRig::downloads);
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(rig.result(), R"({"ok":true,"code":"moved"})");
  EXPECT_EQ(rig.openedAt(), 37s);
}

TEST_F(MoveWaitTest, JustBeforeTheLimitOneMoreLookIsTaken) {
  clockIsSet(1s, -1ns);
  rig.runs(MoveRig::downloads);
  EXPECT_EQ(opened(), 30250ms);
  EXPECT_EQ(looks(), 121U);
}

TEST_F(MoveWaitTest, JustAfterTheLimitNoLookIsTaken) {
  clockIsSet(1s, 1ns);
  rig.runs(MoveRig::downloads);
  EXPECT_EQ(opened(), 30s);
  EXPECT_EQ(looks(), 120U);
}

TEST_F(MoveWaitTest, AQuitJustBeforeTheLimitIsSeenAtTheLastLook) {
  rig.runs(MoveRig::downloads);
  rig.quitsAt(29750ms);
  EXPECT_EQ(opened(), 29750ms);
  EXPECT_EQ(looks(), 120U);
}

TEST_F(MoveWaitTest, AWallClockSetForwardEndsTheWait) {
  rig.runs(MoveRig::downloads);
  clockIsSet(900ms, 1h);
  EXPECT_EQ(opened(), 1s);
  EXPECT_EQ(looks(), 4U);
}

TEST_F(MoveWaitTest, AWallClockSetBackLengthensTheWait) {
  rig.runs(MoveRig::downloads);
  clockIsSet(900ms, -1min);
  EXPECT_EQ(opened(), 90s);
}

TEST_F(MoveWaitTest, AWallClockSetBackDoesNotKeepItWaitingForACopyThatHasQuit) {
  rig.runs(MoveRig::downloads);
  clockIsSet(900ms, -24h);
  rig.quitsAt(40s);
  EXPECT_EQ(opened(), 40s);
}

TEST_F(MoveWaitTest, OtherApplicationsAreNotWaitedFor) {
  rig.workspace.running = {{std::nullopt, MoveRig::downloads},
                           {"studio.pell.Tamo", std::nullopt},
                           {std::nullopt, std::nullopt},
                           {"studio.pell.Tamo.Core", MoveRig::downloads},
                           {"studio.pell.Tamo", "/Users/u/Desktop/Tamo.app"},
                           {"studio.pell.Tamo", MoveRig::installed}};
  EXPECT_EQ(opened(), 0s);
}

TEST_F(MoveWaitTest, EveryInstanceOfTheCopyIsWaitedFor) {
  rig.runs(MoveRig::downloads);
  rig.runs(MoveRig::downloads);
  rig.clock.at(400ms, [this] { rig.workspace.running.pop_back(); });
  rig.quitsAt(900ms);
  EXPECT_EQ(opened(), 1s);
}

TEST_F(MoveWaitTest, TheCopyIsFoundAmongOthers) {
  rig.workspace.running = {{"com.example.other", "/Applications/Other.app"}, {std::nullopt, std::nullopt}};
  rig.runs("/Users/u/Downloads/./Tamo.app/");
  rig.quitsAt(400ms);
  EXPECT_EQ(opened(), 500ms);
}

TEST_F(MoveWaitTest, ATranslocatedCopyIsWaitedForWhereItRuns) {
  rig.runsFrom(MoveRig::translocated);
  rig.bundles.originals[MoveRig::translocated] = MoveRig::downloads;
  rig.runs(MoveRig::translocated);
  rig.quitsAt(700ms);
  EXPECT_EQ(opened(), 750ms);
}

TEST_F(MoveWaitTest, TheOriginalOfATranslocatedCopyIsNotWaitedFor) {
  rig.runsFrom(MoveRig::translocated);
  rig.bundles.originals[MoveRig::translocated] = MoveRig::downloads;
  rig.runs(MoveRig::downloads);
  EXPECT_EQ(opened(), 0s);
  EXPECT_EQ(rig.userFiles.trashed, MoveRig::Texts{MoveRig::downloads});
}

/// A copy is known by the path it was launched by; where a link leads, nobody asks.
TEST_F(MoveWaitTest, ACopyBehindALinkIsWaitedForWhereItWasLaunched) {
  const std::string link = "/Users/u/Desktop/Tamo.app";
  rig.runsFrom(link);
  rig.files.resolved[link] = MoveRig::downloads;
  rig.runs(MoveRig::downloads);
  rig.runs(link);
  rig.clock.at(700ms, [this] { rig.workspace.running.pop_back(); });
  EXPECT_EQ(opened(), 750ms);
}

TEST_F(MoveWaitTest, ACopyBelowPrivateIsTheSameHoweverThatIsSpelt) {
  const std::string prefix = "/private";
  ASSERT_TRUE(MoveRig::translocated.starts_with(prefix + "/"));
  rig.runsFrom(MoveRig::translocated);
  rig.runs(MoveRig::translocated.substr(prefix.size()));
  rig.quitsAt(700ms);
  EXPECT_EQ(opened(), 750ms);
}

TEST_F(MoveWaitTest, ACopyInAnyOtherFolderOfThatNameIsAnotherOne) {
  rig.runsFrom("/private/home/u/Tamo.app");
  rig.runs("/home/u/Tamo.app");
  EXPECT_EQ(opened(), 0ms);
}

TEST_F(MoveWaitTest, TheInstalledCopyIsWaitedForWhenItIsTheOneThatRuns) {
  rig.runsFrom(MoveRig::installed);
  rig.files.resolved[MoveRig::installed] = "/Volumes/X/Tamo.app";
  rig.runs(MoveRig::installed);
  rig.quitsAt(700ms);
  EXPECT_EQ(opened(), 750ms);
}

TEST_F(MoveWaitTest, AnOnlyOpenedCopyIsWaitedForAsWell) {
  rig.place(MoveRig::installed, "42");
  rig.runs(MoveRig::downloads);
  rig.quitsAt(700ms);
  EXPECT_EQ(opened(), 750ms);
}

TEST_F(MoveWaitTest, AnOnlyOpenedCopyIsWaitedForThirtySecondsAtMost) {
  rig.place(MoveRig::installed, "42");
  rig.runs(MoveRig::downloads);
  EXPECT_EQ(opened(), 30s);
}

TEST_F(MoveWaitTest, TheMoveEndsOnlyWhenTheOpeningReports) {
  std::function<void()> report;
  rig.workspace.openDelivery = [&report](auto deliver) { report = deliver; };
  EXPECT_FALSE(rig.move());
  report();
  EXPECT_FALSE(rig.task->done());
  rig.mainQueue.runUntilIdle();
  EXPECT_TRUE(rig.task->done());
}

TEST_F(MoveWaitTest, TheOpeningMayReportFromAnotherThread) {
  rig.workspace.openDelivery = [](const auto& deliver) { std::thread(deliver).join(); };
  EXPECT_TRUE(rig.move());
}

TEST_F(MoveWaitTest, AnOpeningThatFailsLeavesNoTrace) {
  rig.workspace.openError = platform::Error("NSCocoaErrorDomain", 256, "it could not be opened");
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(rig.ledger.textsOf({"log: "}), MoveRig::Texts{"log: default move-to-applications -> moved"});
  EXPECT_EQ(rig.ledger.count("files: write"), 1U);
  EXPECT_EQ(rig.result(), R"({"ok":true,"code":"moved"})");
}

TEST_F(MoveWaitTest, AMoveThatIsDroppedWhileItWaitsOpensNothing) {
  rig.runs(MoveRig::downloads);
  rig.clock.at(5s, [this] { rig.task.reset(); });
  rig.task.emplace(rig.mover.moveToApplications());
  rig.task->start();
  rig.mainQueue.runUntilIdle();
  EXPECT_EQ(rig.ledger.count("workspace: open"), 0U);
  EXPECT_EQ(rig.clock.monotonicNow(), 5s);
}

}  // namespace
}  // namespace tamo

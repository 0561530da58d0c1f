#include "launch/launchctl.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "unit/launch/launch_rig.hpp"

namespace tamo {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class LaunchctlTest : public ::testing::Test {
 protected:
  std::int32_t listing(fakes::ToolScript script) {
    rig.processes.once({"/bin/launchctl", "list"}, std::move(script));
    return rig.launchctl.launchctl({"list"}, -1);
  }

  LaunchRig rig;
};

TEST_F(LaunchctlTest, TheTargetNamesTheJobInTheUsersDomain) {
  EXPECT_EQ(rig.launchctl.jobTarget(), "gui/501/studio.pell.tamo.core");
}

TEST_F(LaunchctlTest, TheExitStatusIsGiven) {
  EXPECT_EQ(listing({.status = 0}), 0);
  EXPECT_EQ(listing({.status = 113}), 113);
}

TEST_F(LaunchctlTest, NotStartedIsMinusOneAtOnce) {
  EXPECT_EQ(listing({.starts = false}), -1);
  EXPECT_THAT(rig.ledger.texts(), ElementsAre("tool: /bin/launchctl list"));
}

TEST_F(LaunchctlTest, AToolThatHasAlreadyExitedCostsNoSleep) {
  listing({.runsFor = 0ns});
  EXPECT_THAT(rig.ledger.texts(), ElementsAre("tool: /bin/launchctl list", "tool: wait /bin/launchctl"));
}

TEST_F(LaunchctlTest, ARunningToolIsLookedAtEvery50Milliseconds) {
  listing({.runsFor = 101ms});
  EXPECT_THAT(rig.ledger.textsOf({"clock: "}),
              ElementsAre("clock: sleep 50 ms", "clock: sleep 50 ms", "clock: sleep 50 ms"));
}

TEST_F(LaunchctlTest, AToolThatExitsAtTheDeadlineIsInTime) {
  for (const auto runsFor : {4950ms, 4999ms, 5000ms}) {
    LaunchRig fresh;
    fresh.processes.once({"/bin/launchctl", "list"}, {.status = 7, .runsFor = runsFor});
    EXPECT_EQ(fresh.launchctl.launchctl({"list"}, -1), 7);
    EXPECT_EQ(fresh.ledger.count("tool: terminate"), 0U);
  }
}

TEST_F(LaunchctlTest, AToolThatRunsPastTheDeadlineIsAskedToTerminateAndNotWaitedFor) {
  EXPECT_EQ(listing({.status = 7, .runsFor = 5000ms + 1ns}), -1);
  EXPECT_EQ(rig.now(), 5s);
  EXPECT_THAT(rig.ledger.textsOf({"tool: "}),
              ElementsAre("tool: /bin/launchctl list", "tool: terminate /bin/launchctl"));
}

TEST_F(LaunchctlTest, AToolThatNeverExitsCostsFiveSeconds) {
  EXPECT_EQ(listing({.runsFor = std::nullopt}), -1);
  EXPECT_EQ(rig.now(), 5s);
  EXPECT_EQ(rig.ledger.count("clock: sleep 50 ms"), 100U);
}

TEST_F(LaunchctlTest, AWallClockSetForwardDoesNotEndTheWait) {
  rig.clock.at(1s, [this] { rig.clock.wallAtZero += 24h; });
  EXPECT_EQ(listing({.status = 7, .runsFor = 3s}), 7);
}

TEST_F(LaunchctlTest, AWallClockSetBackDoesNotStretchTheWait) {
  rig.clock.at(1s, [this] { rig.clock.wallAtZero -= 24h; });
  EXPECT_EQ(listing({.runsFor = std::nullopt}), -1);
  EXPECT_EQ(rig.now(), 5s);
}

TEST_F(LaunchctlTest, AKickstartWithKillPassesThreeArguments) {
  rig.processes.once({"/bin/launchctl", "kickstart", "-k", LaunchRig::target}, {.status = 5});
  EXPECT_EQ(rig.launchctl.kickstart({.kill = true}), 5);
  EXPECT_EQ(rig.ledger.texts().front(), "tool: /bin/launchctl kickstart -k gui/501/studio.pell.tamo.core");
}

TEST_F(LaunchctlTest, AKickstartWithoutKillPassesTwoArguments) {
  rig.processes.once({"/bin/launchctl", "kickstart", LaunchRig::target}, {.status = 0});
  EXPECT_EQ(rig.launchctl.kickstart({.kill = false}), 0);
  EXPECT_EQ(rig.ledger.texts().front(), "tool: /bin/launchctl kickstart gui/501/studio.pell.tamo.core");
}

TEST_F(LaunchctlTest, AKickstartThatHangsIsMinusOne) {
  rig.processes.once({"/bin/launchctl", "kickstart"}, {.runsFor = std::nullopt});
  EXPECT_EQ(rig.launchctl.kickstart({}), -1);
}

TEST_F(LaunchctlTest, OutputGoesWhereItIsAskedAndErrorsNowhere) {
  KeepsLaunches kept(rig.processes);
  Launchctl launchctl({.processes = kept,
                       .files = rig.files,
                       .clock = rig.clock,
                       .kernelProcesses = rig.kernelProcesses,
                       .user = rig.user,
                       .label = "a.label"});
  rig.processes.always({"/bin/launchctl"}, {});
  EXPECT_EQ(launchctl.kickstart({.kill = true}), 0);
  EXPECT_TRUE(launchctl.printJob());
  ASSERT_EQ(kept.launches.size(), 2U);
  EXPECT_THAT(kept.launches[0].arguments, ElementsAre("kickstart", "-k", "gui/501/a.label"));
  EXPECT_EQ(kept.launches[0].standardOutput, -1);
  EXPECT_THAT(kept.launches[1].arguments, ElementsAre("print", "gui/501/a.label"));
  EXPECT_GE(kept.launches[1].standardOutput, 0);
  EXPECT_FALSE(kept.launches[0].capturesErrors || kept.launches[1].capturesErrors);
}

class PrintJobTest : public LaunchctlTest {
 protected:
  /// The print's file is gone and was asked to be removed once, last of all.
  void expectRemoved() {
    EXPECT_THAT(rig.files.contents, IsEmpty());
    EXPECT_EQ(rig.ledger.count("files: remove"), 1U);
    EXPECT_EQ(rig.ledger.texts().back(), "files: remove " + LaunchRig::printFile);
  }
};

TEST_F(PrintJobTest, TheTextAndTheCodeAreGiven) {
  rig.printOnce({.status = 0, .output = "what it printed\n"});
  const auto print = rig.launchctl.printJob();
  ASSERT_TRUE(print);
  EXPECT_EQ(print->code, 0);
  EXPECT_EQ(print->text, "what it printed\n");
  expectRemoved();
}

TEST_F(PrintJobTest, TheFileIsCreatedOpenedClosedReadAndRemovedInThisOrder) {
  rig.printTextOnce("text");
  EXPECT_TRUE(rig.launchctl.printJob());
  const auto& path = LaunchRig::printFile;
  EXPECT_THAT(rig.ledger.texts(), ElementsAre("files: write " + path, "files: open " + path,
                                              "tool: /bin/launchctl print gui/501/studio.pell.tamo.core",
                                              "tool: wait /bin/launchctl", "files: close " + path,
                                              "files: read " + path, "files: remove " + path));
}

TEST_F(PrintJobTest, WhatStoodInTheFileBeforeIsGone) {
  rig.files.contents[LaunchRig::printFile] = "left by another";
  rig.printTextOnce("new");
  const auto print = rig.launchctl.printJob();
  EXPECT_EQ(print.value().text, "new");
  expectRemoved();
}

TEST_F(PrintJobTest, ATemporaryDirectoryWithoutASlashAtItsEndGetsOne) {
  rig.files.temporary = "/tmp/of-the-user";
  rig.printTextOnce("text");
  EXPECT_EQ(rig.launchctl.printJob().value().text, "text");
  expectRemoved();
}

TEST_F(PrintJobTest, NoTemporaryDirectoryIsAbsent) {
  rig.files.temporary = std::nullopt;
  EXPECT_FALSE(rig.launchctl.printJob());
  EXPECT_THAT(rig.ledger.texts(), IsEmpty());
}

TEST_F(PrintJobTest, AFileThatCannotBeCreatedIsAbsentAndStillRemoved) {
  rig.files.failsToWrite = true;
  EXPECT_FALSE(rig.launchctl.printJob());
  EXPECT_THAT(rig.ledger.texts(),
              ElementsAre("files: write " + LaunchRig::printFile, "files: remove " + LaunchRig::printFile));
}

TEST_F(PrintJobTest, AFileThatCannotBeOpenedIsAbsentAndStillRemoved) {
  rig.files.failsToOpen = true;
  EXPECT_FALSE(rig.launchctl.printJob());
  EXPECT_EQ(rig.ledger.count("tool:"), 0U);
  expectRemoved();
}

TEST_F(PrintJobTest, AFileThatCannotBeReadLeavesTheTextAbsent) {
  rig.files.failsToRead = true;
  rig.printOnce({.status = 0, .output = "text"});
  const auto print = rig.launchctl.printJob();
  EXPECT_EQ(print.value().code, 0);
  EXPECT_EQ(print.value().text, std::nullopt);
  expectRemoved();
}

TEST_F(PrintJobTest, OneInvalidByteLeavesTheTextAbsent) {
  for (const auto* bytes : {"\xFF", "pid = 1\n\xC3", "\xED\xA0\x80", "\xC0\xAF"}) {
    rig.printTextOnce(bytes);
    const auto print = rig.launchctl.printJob();
    ASSERT_TRUE(print);
    EXPECT_EQ(print->code, 0);
    EXPECT_EQ(print->text, std::nullopt);
  }
}

TEST_F(PrintJobTest, TextBeyondAsciiIsKept) {
  rig.printTextOnce("path = /Users/Zoë/\u30BF\n");
  EXPECT_EQ(rig.launchctl.printJob().value().text, "path = /Users/Zoë/\u30BF\n");
}

TEST_F(PrintJobTest, AFailedLaunchctlIsAPrintWithItsCode) {
  rig.printOnce({.status = 113, .output = ""});
  const auto print = rig.launchctl.printJob();
  EXPECT_EQ(print.value().code, 113);
  EXPECT_EQ(print.value().text, "");
  expectRemoved();
}

TEST_F(PrintJobTest, ALaunchctlThatDoesNotStartIsAPrintWithMinusOne) {
  rig.printOnce({.starts = false});
  const auto print = rig.launchctl.printJob();
  EXPECT_EQ(print.value().code, -1);
  EXPECT_EQ(print.value().text, "");
  expectRemoved();
}

TEST_F(PrintJobTest, ALaunchctlThatHangsIsAPrintWithMinusOneAndWhatItWrote) {
  rig.printOnce({.output = "half a pri", .runsFor = std::nullopt});
  const auto print = rig.launchctl.printJob();
  EXPECT_EQ(print.value().code, -1);
  EXPECT_EQ(print.value().text, "half a pri");
  expectRemoved();
}

TEST_F(PrintJobTest, AFailureToRemoveIsIgnored) {
  rig.files.failsToRemove = true;
  rig.printTextOnce("text");
  EXPECT_EQ(rig.launchctl.printJob().value().text, "text");
}

class JobRunningTest : public LaunchctlTest {};

TEST_F(JobRunningTest, APidLineInThePrintMeansRunning) {
  rig.printTextOnce(printOf("\tpid = 812\n"));
  EXPECT_TRUE(rig.launchctl.jobRunning());
}

TEST_F(JobRunningTest, ALoadedJobWithoutAProcessIsNotRunning) {
  rig.printTextOnce(printOf("\tstate = not running\n"));
  EXPECT_FALSE(rig.launchctl.jobRunning());
}

TEST_F(JobRunningTest, AJobThatIsNotLoadedIsNotRunning) {
  rig.printOnce({.status = 113});
  EXPECT_FALSE(rig.launchctl.jobRunning());
}

TEST_F(JobRunningTest, ALaunchctlThatTimesOutCountsAsRunning) {
  rig.printOnce({.runsFor = std::nullopt});
  EXPECT_TRUE(rig.launchctl.jobRunning());
}

TEST_F(JobRunningTest, ATemporaryDirectoryThatIsNotWritableCountsAsRunning) {
  rig.files.failsToWrite = true;
  EXPECT_TRUE(rig.launchctl.jobRunning());
}

}  // namespace
}  // namespace tamo

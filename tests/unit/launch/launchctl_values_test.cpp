#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <utility>

#include "unit/launch/launch_rig.hpp"

/// Values that a Mac gives now and then, and what one call must not leave for the next.
namespace tamo {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

constexpr auto highestStatus = std::numeric_limits<std::int32_t>::max();
constexpr auto lowestStatus = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t tellingStatuses[] = {
    0,   1,   2,   5,   9,   15,  37,  64,  77, 112, 113,  114,           119,
    125, 126, 127, 128, 143, 255, 256, 369, -1, -2,  -113, highestStatus, lowestStatus};

class LaunchctlValuesTest : public ::testing::Test {
 protected:
  LaunchRig rig;
};

TEST_F(LaunchctlValuesTest, AnyStatusIsGivenAsItIs) {
  for (const auto status : tellingStatuses) {
    rig.processes.once({"/bin/launchctl", "list"}, {.status = status});
    EXPECT_EQ(rig.launchctl.launchctl({"list"}, -1), status);
    rig.processes.once({"/bin/launchctl", "kickstart", "-k"}, {.status = status});
    EXPECT_EQ(rig.launchctl.kickstart({.kill = true}), status);
  }
}

TEST_F(LaunchctlValuesTest, AnyStatusOfAPrintIsKeptBesideItsText) {
  for (const auto status : tellingStatuses) {
    rig.printOnce({.status = status, .output = "job = {\n}\n"});
    const auto print = rig.launchctl.printJob();
    EXPECT_EQ(print.value().code, status);
    EXPECT_EQ(print.value().text, "job = {\n}\n") << status;
  }
}

TEST_F(LaunchctlValuesTest, OnlyAGoodPrintWithoutAPidAndTheNotFoundStatusSayThatNothingRuns) {
  for (const auto status : tellingStatuses) {
    rig.printOnce({.status = status, .output = "job = {\n}\n"});
    EXPECT_EQ(rig.launchctl.jobRunning(), status != 0 && status != 113) << status;
  }
}

TEST_F(LaunchctlValuesTest, AFailedKickstartIsNotTriedAgain) {
  rig.processes.always({"/bin/launchctl"}, {.status = 37});
  EXPECT_EQ(rig.launchctl.kickstart({.kill = true}), 37);
  EXPECT_EQ(rig.launchctl.kickstart({.kill = false}), 37);
  EXPECT_THAT(rig.ledger.textsOf({"tool: /", "clock: "}),
              ElementsAre("tool: /bin/launchctl kickstart -k " + LaunchRig::target,
                          "tool: /bin/launchctl kickstart " + LaunchRig::target));
}

TEST_F(LaunchctlValuesTest, AFailedPrintIsNotTriedAgain) {
  rig.processes.always({"/bin/launchctl"}, {.status = 1});
  EXPECT_TRUE(rig.launchctl.jobRunning());
  EXPECT_EQ(rig.ledger.count("tool: /bin/launchctl"), 1U);
}

TEST_F(LaunchctlValuesTest, WhetherTheJobRunsIsAskedAfreshEachTime) {
  rig.printTextOnce(printOf("\tpid = 812\n"));
  EXPECT_TRUE(rig.launchctl.jobRunning());
  rig.printTextOnce(printOf("\tstate = not running\n"));
  EXPECT_FALSE(rig.launchctl.jobRunning());
  rig.printTextOnce(printOf("\tpid = 813\n"));
  EXPECT_TRUE(rig.launchctl.jobRunning());
}

TEST_F(LaunchctlValuesTest, APrintHasNothingOfTheOneBefore) {
  rig.printTextOnce("a first and longer one\n");
  EXPECT_EQ(rig.launchctl.printJob().value().text, "a first and longer one\n");
  rig.printOnce({.status = 113, .output = "other\n"});
  EXPECT_EQ(rig.launchctl.printJob().value().text, "other\n");
  rig.printTextOnce("");
  EXPECT_EQ(rig.launchctl.printJob().value().text, "");
}

TEST_F(LaunchctlValuesTest, APrintIsKeptToTheByte) {
  for (const auto& text : {std::string("a\0b", 3), std::string("\0", 1), std::string(" \n\r\n\t"),
                           std::string("\n\nlast line without an end"), std::string(300'000, 'x')}) {
    rig.printTextOnce(text);
    EXPECT_EQ(rig.launchctl.printJob().value().text, text);
  }
}

TEST_F(LaunchctlValuesTest, ThePrintsFileIsNamedAfterThisProcess) {
  rig.kernelProcesses.pid = 4194304;
  rig.printTextOnce("text");
  EXPECT_TRUE(rig.launchctl.printJob());
  EXPECT_THAT(rig.ledger.texts(), Contains("files: write /tmp/of-the-user/tamo-core-print-4194304.txt"));
}

class JobTargetTest : public ::testing::Test {
 protected:
  LaunchRig rig;
  NumberedUser user;
  Launchctl launchctl{{.processes = rig.processes,
                       .files = rig.files,
                       .clock = rig.clock,
                       .kernelProcesses = rig.kernelProcesses,
                       .user = user,
                       .label = "a.label"}};
};

TEST_F(JobTargetTest, NamesAnyUserInDecimal) {
  for (const auto& [number, target] : {std::pair<std::uint32_t, std::string>{0, "gui/0/a.label"},
                                       {89, "gui/89/a.label"},
                                       {1'234'567, "gui/1234567/a.label"},
                                       {4'294'967'294, "gui/4294967294/a.label"}}) {
    user.number = number;
    EXPECT_EQ(launchctl.jobTarget(), target);
  }
}

TEST_F(JobTargetTest, IsBuiltAfreshForEachCall) {
  rig.processes.always({"/bin/launchctl"}, {});
  EXPECT_EQ(launchctl.kickstart({}), 0);
  user.number = 502;
  EXPECT_EQ(launchctl.kickstart({.kill = true}), 0);
  EXPECT_TRUE(launchctl.printJob());
  EXPECT_THAT(rig.ledger.textsOf({"tool: /"}),
              ElementsAre("tool: /bin/launchctl kickstart gui/501/a.label",
                          "tool: /bin/launchctl kickstart -k gui/502/a.label",
                          "tool: /bin/launchctl print gui/502/a.label"));
}

}  // namespace
}  // namespace tamo

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "unit/launch/launch_rig.hpp"

/// What the wait for launchctl asks, and when its five seconds begin.
namespace tamo {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

class LaunchctlDeadlineTest : public ::testing::Test {
 protected:
  std::int32_t listing() { return launchctl.launchctl({"list"}, -1); }

  LaunchRig rig;
  PlayedTool tool;
  StartsPlayedTool processes{tool};
  Launchctl launchctl{{.processes = processes,
                       .files = rig.files,
                       .clock = rig.clock,
                       .kernelProcesses = rig.kernelProcesses,
                       .user = rig.user,
                       .label = LaunchRig::label}};
};

// The look that found it running may have been long ago: the machine may have slept since.
TEST_F(LaunchctlDeadlineTest, AToolThatExitedSinceTheLastLookIsInTime) {
  tool.status = 7;
  tool.running = [this] {
    const bool first = rig.now() == 0s;
    rig.clock.advanceTo(1h);
    return first;
  };
  EXPECT_EQ(listing(), 7);
  EXPECT_THAT(tool.asked, ElementsAre("running?", "running?", "wait"));
}

TEST_F(LaunchctlDeadlineTest, AToolThatExitsInTheLastSleepIsInTime) {
  tool.status = 7;
  tool.running = [this] { return rig.now() < 5s; };
  EXPECT_EQ(listing(), 7);
  EXPECT_EQ(tool.asked.back(), "wait");
}

TEST_F(LaunchctlDeadlineTest, NothingIsAskedOfAToolThatWasToldToTerminate) {
  tool.running = [this] {
    return std::find(tool.asked.begin(), tool.asked.end(), "terminate") == tool.asked.end();
  };
  EXPECT_EQ(listing(), -1);
  EXPECT_EQ(tool.asked.back(), "terminate");
  EXPECT_EQ(rig.now(), 5s);
}

TEST_F(LaunchctlDeadlineTest, AToolThatRunsOnIsToldOnce) {
  tool.running = [] { return true; };
  EXPECT_EQ(listing(), -1);
  EXPECT_EQ(std::count(tool.asked.begin(), tool.asked.end(), "terminate"), 1);
  EXPECT_EQ(std::count(tool.asked.begin(), tool.asked.end(), "running?"), 102);
}

TEST_F(LaunchctlDeadlineTest, LooksThatTakeTimeAreFewerInTheFiveSeconds) {
  tool.running = [this] {
    rig.clock.advanceTo(rig.now() + 1s);
    return true;
  };
  EXPECT_EQ(listing(), -1);
  EXPECT_EQ(rig.ledger.count("clock: sleep 50 ms"), 4U);
  EXPECT_EQ(std::count(tool.asked.begin(), tool.asked.end(), "running?"), 6);
}

TEST_F(LaunchctlDeadlineTest, ADeadlineThatNoClockReachesIsFatal) {
  rig.clock.advanceTo(std::chrono::nanoseconds::max() - 5s + 1ns);
  EXPECT_DEATH(static_cast<void>(listing()), "fatal: a deadline overflows");
}

TEST_F(LaunchctlDeadlineTest, EveryCallHasFiveSecondsOfItsOwn) {
  tool.running = [this] { return rig.now() < 4s; };
  EXPECT_EQ(listing(), 0);
  tool.running = [this] { return rig.now() < 8s; };
  EXPECT_EQ(listing(), 0);
}

TEST_F(LaunchctlDeadlineTest, TheFiveSecondsBeginWhenItHasStarted) {
  rig.processes.once({"/bin/launchctl", "list"},
                     {.status = 7, .runsFor = 4s, .effect = [this] { rig.clock.advanceTo(3s); }});
  EXPECT_EQ(rig.launchctl.launchctl({"list"}, -1), 7);
  EXPECT_EQ(rig.now(), 7s);
}

TEST_F(LaunchctlDeadlineTest, OutputMayGoToTheLeastDescriptor) {
  EXPECT_EQ(launchctl.launchctl({"list"}, 0), 0);
  EXPECT_EQ(processes.launched.standardOutput, 0);
}

TEST_F(LaunchctlDeadlineTest, TheToolIsNamedByItsWholePath) {
  EXPECT_EQ(launchctl.kickstart({}), 0);
  EXPECT_EQ(processes.launched.path, "/bin/launchctl");
}

}  // namespace
}  // namespace tamo

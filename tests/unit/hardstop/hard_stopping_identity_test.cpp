#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>

#include "unit/hardstop/hard_stopping_rig.hpp"

/// Which process a hard stop is about, in the log and from one hard stop to the next; what it asks once and
/// then keeps; and what it hands back.
namespace tamo {
namespace {

using namespace std::chrono_literals;
using platform::Task;

class LoggedPidTest : public HardStoppingRig {};

TEST_F(LoggedPidTest, IsThePrintsAndNotTheOutcomes) {
  hardStops.note(HardStop::KilledProcess{43, true}, 4242, false);
  hardStops.note(HardStop::KilledGroup{77, false}, 4242, false);
  EXPECT_EQ(fake.ledger.texts(), (Texts{"log: default hardstop pid 4242: killedProcess(43, gone: true)",
                                        "log: default hardstop pid 4242: killedGroup(77, gone: false)"}));
}

TEST_F(LoggedPidTest, MayBeTheHighestOfAll) {
  hardStops.note(HardStop::Exited(), std::numeric_limits<std::int32_t>::max(), false);
  EXPECT_EQ(fake.ledger.texts(), Texts{"log: default hardstop pid 2147483647: exited"});
}

class RepeatedHardStopTest : public HardStoppingRig {};

TEST_F(RepeatedHardStopTest, IsAboutTheProcessOfItsOwnPrint) {
  EXPECT_EQ(stopped(gives(0)), 0);
  fake.ledger.clear();
  print = "job = {\n\tpid = 5151\n}\n";
  fake.kernelProcesses.processes[5151] = {.startSeconds = 15, .startMicroseconds = 0, .group = 500};
  fake.kernelProcesses.onKill = [this](std::int32_t pid) { fake.kernelProcesses.processes.erase(pid); };
  EXPECT_EQ(stopped(gives(0)), 0);
  EXPECT_EQ(fake.ledger.textsOf({"kernel: kill", "log"}),
            (Texts{"kernel: kill 5151", "log: default hardstop pid 5151: killedProcess(5151, gone: true)"}));
  EXPECT_EQ(fake.ledger.count("kernel: look 4242"), 0U);
}

TEST_F(RepeatedHardStopTest, GathersEverythingAfresh) {
  EXPECT_EQ(stopped(gives(5)), 5);
  dataDirectory = "/moved/";
  fake.files.contents["/moved/core.db.revert.pending"] = "";
  EXPECT_EQ(stopped(gives(0)), 0);
  EXPECT_EQ(hardStops.hardStop(), "spared(\"revert_restoring\", gone: false)");
}

TEST_F(RepeatedHardStopTest, ReadsTheBuildAfresh) {
  EXPECT_EQ(stopped(gives(5)), 5);
  info("/Applications/Tamo.app", "<key>CFBundleVersion</key><string>1.4.2</string>");
  EXPECT_EQ(stopped(gives(0)), 0);
  EXPECT_EQ(hardStops.hardStop(), "spared(\"revert_release\", gone: false)");
}

class GatheredOnceTest : public HardStoppingRig {
 protected:
  std::optional<std::string> outcome() {
    EXPECT_EQ(stopped(gives(0)), 0);
    return hardStops.hardStop();
  }
  const std::string killed = "killedGroup(4242, gone: true)";
};

TEST_F(GatheredOnceTest, NothingOfItIsAskedForAgain) {
  EXPECT_EQ(outcome(), killed);
  for (const auto* deed : {"job: print", "user: data directory", "files: read", "kernel: look 900"})
    EXPECT_EQ(fake.ledger.count(deed), 1U) << deed;
}

TEST_F(GatheredOnceTest, OurOwnGroupIsThatOfTheBeginning) {
  fake.kernelProcesses.group = 4242;
  fake.clock.at(1s, [this] { fake.kernelProcesses.group = 500; });
  EXPECT_EQ(outcome(), "killedProcess(4242, gone: true)");
}

TEST_F(GatheredOnceTest, OurOwnStartIsThatOfTheBeginning) {
  fake.clock.at(1s, [this] { fake.kernelProcesses.processes[900].startSeconds = 5; });
  EXPECT_EQ(outcome(), killed);
}

TEST_F(GatheredOnceTest, TheDataDirectoryIsThatOfTheBeginning) {
  markerFile("core.db.revert.pending");
  fake.clock.at(1s, [this] { dataDirectory = "/moved/"; });
  EXPECT_EQ(outcome(), "spared(\"revert_restoring\", gone: false)");
}

TEST_F(GatheredOnceTest, TheTargetIsThatOfTheDecision) {
  fake.kernelProcesses.processes[4242].group = 1;
  fake.clock.at(1s, [this] { fake.kernelProcesses.processes[4242].group = 4242; });
  EXPECT_EQ(outcome(), killed);
}

class WallClockTest : public HardStoppingRig {};

TEST_F(WallClockTest, SetForwardTakesNothingFromTheGracePeriod) {
  fake.clock.at(1s, [this] { fake.clock.wallAtZero += 24h; });
  EXPECT_EQ(stopped(gives(0)), 0);
  EXPECT_EQ(fake.clock.monotonicNow(), 2s);
}

TEST_F(WallClockTest, SetBackAddsNothingToTheGracePeriod) {
  fake.clock.at(1s, [this] { fake.clock.wallAtZero -= 24h; });
  EXPECT_EQ(stopped(gives(0)), 0);
  EXPECT_EQ(fake.clock.monotonicNow(), 2s);
}

class HandedBackTest : public HardStoppingRig {};

TEST_F(HandedBackTest, AnyResultIsTheOperationsOwn) {
  for (const std::int32_t status : {1, -1, 113, 127, 255, 256, std::numeric_limits<std::int32_t>::min()}) {
    EXPECT_EQ(stopped(gives(status)), status);
    EXPECT_EQ(hardStops.hardStop(), "cancelled stopFailed") << status;
  }
}

TEST_F(HandedBackTest, AnErrorThatIsNotOfServiceManagementTravelsToo) {
  const Operation operation = []() -> Task<std::int32_t> { throw std::runtime_error("of another kind"); };
  EXPECT_THROW(static_cast<void>(stopped(operation)), std::runtime_error);
  EXPECT_EQ(hardStops.hardStop(), "cancelled stopFailed");
}

TEST_F(HandedBackTest, EveryPartOfAnErrorIsKept) {
  const Operation operation = []() -> Task<std::int32_t> {
    throw platform::Error("SMAppServiceErrorDomain", 5'000'000'000, "");
  };
  try {
    static_cast<void>(stopped(operation));
    ADD_FAILURE() << "nothing was raised";
  } catch (const platform::Error& error) {
    EXPECT_EQ(error.domain(), "SMAppServiceErrorDomain");
    EXPECT_EQ(error.code(), 5'000'000'000);
    EXPECT_EQ(error.description(), "");
  }
}

class PrintWithoutAPidTest : public HardStoppingRig {};

// A print of no words is a print: it names nobody, and nobody is looked at.
TEST_F(PrintWithoutAPidTest, OfNoWordsNamesNobody) {
  print = "";
  EXPECT_EQ(stopped(gives(0)), 0);
  EXPECT_EQ(fake.ledger.texts(), (Texts{"job: print", "operation: runs"}));
}

TEST_F(PrintWithoutAPidTest, NamesNeitherTheKernelNorLaunchd) {
  for (const auto* pid : {"0", "1", "-4242"}) {
    fake.ledger.clear();
    print = "job = {\n\tpid = " + std::string(pid) + "\n}\n";
    EXPECT_EQ(stopped(gives(0)), 0);
    EXPECT_EQ(fake.ledger.texts(), (Texts{"job: print", "operation: runs"}));
  }
}

TEST_F(PrintWithoutAPidTest, CutOffBehindThePidStillNamesIt) {
  print = "job = {\n\tpid = 4242";
  EXPECT_EQ(stopped(gives(0)), 0);
  EXPECT_EQ(hardStops.hardStop(), "killedGroup(4242, gone: true)");
}

}  // namespace
}  // namespace tamo

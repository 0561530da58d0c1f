#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "companion.hpp"

namespace tamo {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using Texts = std::vector<std::string>;

/// What the routes hand to a hard stop, and what they make of it. The Core dies of nothing but a kill.
class HardStopRouteTest : public ::testing::Test {
 protected:
  HardStopRouteTest() { companion.config.writesReceipts = true; }

  void printsOnce(fakes::ToolScript script) {
    companion.fakes.processes.once({"/bin/launchctl", "print"}, std::move(script));
  }
  [[nodiscard]] Texts kills() const { return companion.fakes.ledger.textsOf({"kernel: kill"}); }
  [[nodiscard]] Texts notes() const { return companion.fakes.ledger.textsOf({"log: default hardstop"}); }

  const Texts coreKilled{"kernel: kill group 4242"};
  Companion companion;
};

/// Whatever launchctl's own fate was: what it printed names the Core.
TEST_F(HardStopRouteTest, APrintOfAnyExitCodeNamesTheCore) {
  for (const std::int32_t code : {1, 3, 64, 113, 127, 255, -1}) {
    for (const std::string action : {"restart", "reseat"}) {
      Companion fresh;
      fresh.fakes.processes.always({"/bin/launchctl", "print"},
                                   {.status = code, .output = Companion::print()});
      fresh.kickstartGives(0);
      fresh.act(action);
      EXPECT_EQ(fresh.fakes.ledger.textsOf({"kernel: kill"}), coreKilled) << action << " " << code;
    }
  }
}

TEST_F(HardStopRouteTest, APrintThatHangsAfterItNamedTheCoreCounts) {
  companion.fakes.processes.always({"/bin/launchctl", "print"},
                                   {.output = Companion::print(), .runsFor = std::nullopt});
  companion.kickstartGives(0);
  companion.act("restart");
  EXPECT_EQ(kills(), coreKilled);
  EXPECT_EQ(notes(), Texts{"log: default hardstop pid 4242: killedGroup(4242, gone: true)"});
}

TEST_F(HardStopRouteTest, APrintThatIsNoTextNamesNobody) {
  companion.printsAlways(Companion::print() + "\xFF");
  companion.kickstartGives(0);
  companion.act("restart");
  EXPECT_EQ(kills(), Texts{});
  EXPECT_EQ(companion.fakes.ledger.count("threads: detach"), 0U);
  EXPECT_THAT(companion.receipt(), Not(HasSubstr("hardStop")));
}

/// The print that the definition was compared with is old by then.
TEST_F(HardStopRouteTest, TheCoreIsTheOneOfAPrintOfItsOwn) {
  printsOnce({.output = Companion::print(false)});
  printsOnce({.output = Companion::print()});
  companion.kickstartGives(0);
  companion.act("restart");
  EXPECT_EQ(kills(), coreKilled);
}

TEST_F(HardStopRouteTest, ACoreThatIsGoneFromTheSecondPrintIsNotWatched) {
  printsOnce({.output = Companion::print()});
  printsOnce({.output = Companion::print(false)});
  companion.kickstartGives(0);
  companion.act("restart");
  EXPECT_EQ(companion.fakes.ledger.count("threads: detach"), 0U);
  EXPECT_EQ(notes(), Texts{});
}

/// Only zero says that the Core was asked to stop; the line tells the outcome alone.
TEST_F(HardStopRouteTest, AKickstartOfAnyOtherStatusCallsTheWatcherOffAndIsNoted) {
  for (const std::int32_t status : {1, 5, 113, 127, 255, -1, -9}) {
    Companion fresh;
    fresh.config.writesReceipts = true;
    fresh.printsAlways(Companion::print());
    fresh.kickstartGives(status);
    fresh.act("restart");
    EXPECT_EQ(fresh.fakes.ledger.count("kernel: kill"), 0U) << status;
    EXPECT_EQ(fresh.fakes.ledger.textsOf({"log: default hardstop"}),
              Texts{"log: default hardstop pid 4242: cancelled"});
    EXPECT_THAT(fresh.receipt(), HasSubstr("\"hardStop\" : \"cancelled stopFailed\",\n  \"kickstart\" : " +
                                           std::to_string(status) + ",\n"));
  }
}

/// launchctl may do what it was asked although it never ends.
TEST_F(HardStopRouteTest, AKickstartThatHangsIsNoSuccess) {
  companion.printsAlways(Companion::print());
  companion.fakes.processes.once({"/bin/launchctl", "kickstart"}, {.status = 0, .runsFor = std::nullopt});
  companion.act("restart");
  EXPECT_EQ(kills(), Texts{});
  EXPECT_THAT(companion.receipt(),
              HasSubstr("\"hardStop\" : \"cancelled stopFailed\",\n  \"kickstart\" : -1,\n"));
}

/// The reseat that a failed kickstart leads to finds a Core that came up meanwhile.
TEST_F(HardStopRouteTest, OfTwoHardStopsTheLastIsReported) {
  companion.fakes.kernelProcesses.processes[5151] = {
      .startSeconds = 150, .startMicroseconds = 0, .group = 5151};
  auto later = Companion::print();
  later.replace(later.find("4242"), 4, "5151");
  for (const auto& text : {Companion::print(), Companion::print(), Companion::print(false), later})
    printsOnce({.output = text});
  companion.kickstartGives(3);
  companion.act("restart");
  EXPECT_EQ(notes(), (Texts{"log: default hardstop pid 4242: cancelled",
                            "log: default hardstop pid 5151: killedGroup(5151, gone: true)"}));
  EXPECT_THAT(companion.receipt(), HasSubstr("\"hardStop\" : \"killedGroup(5151, gone: true)\""));
}

TEST_F(HardStopRouteTest, AReseatWithoutACoreLeavesTheFirstHardStopReported) {
  for (const bool running : {true, true, false, false})
    printsOnce({.output = Companion::print(running)});
  companion.kickstartGives(3);
  companion.act("restart");
  EXPECT_EQ(companion.fakes.ledger.count("service: register"), 1U);
  EXPECT_THAT(companion.receipt(), HasSubstr("\"hardStop\" : \"cancelled stopFailed\""));
}

TEST_F(HardStopRouteTest, AFailedReseatIsReportedWithItsHardStopAndNothingThatWasStoredBefore) {
  companion.printsAlways(Companion::print(true, "30"));
  companion.fakes.agentServices.unregisterError.emplace("D", 9, "what");
  companion.act("restart");
  const std::string bundleLine =
      "  \"bundle\" : \"\\/Applications\\/Tamo.app\\/Contents\\/Library\\/LoginItems\\/Tamo Core.app\",\n";
  EXPECT_EQ(companion.receipt(), "{\n" + bundleLine +
                                     "  \"code\" : 9,\n  \"description\" : \"what\",\n  \"domain\" : \"D\",\n"
                                     "  \"hardStop\" : \"cancelled stopFailed\",\n  \"ok\" : false,\n"
                                     "  \"operation\" : \"restart\",\n  \"pid\" : 900,\n  \"status\" : 1,\n"
                                     "  \"timestamp\" : \"1970-01-01T00:00:00Z\"\n}");
}

}  // namespace
}  // namespace tamo

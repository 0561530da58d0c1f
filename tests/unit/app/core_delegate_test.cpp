#include "app/core_delegate.hpp"

#include <gtest/gtest.h>
#include <stdexcept>
#include <thread>

#include "app/core_main.hpp"
#include "companion.hpp"

namespace tamo {
namespace {

using std::chrono::milliseconds;
using Texts = std::vector<std::string>;
using Urls = std::vector<std::string>;

/// A launch whose action is seen in the outcome line; "status" and unknown names need nothing arranged.
class CoreDelegateTest : public ::testing::Test {
 protected:
  void launch(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "/program");
    delegate.emplace(companion.fakes.platform, companion.config, std::move(arguments));
  }
  void finishLaunching() {
    delegate->applicationDidFinishLaunching();
    companion.fakes.mainQueue.runPosted();
  }
  void urlsAt(milliseconds moment, Urls urls) {
    companion.fakes.clock.at(moment, [this, urls = std::move(urls)] { delegate->application(urls); });
  }
  std::string performed() {
    companion.fakes.mainQueue.runUntilIdle();
    const auto lines = companion.logLines();
    return lines.size() == 1 ? lines.front() : std::to_string(lines.size()) + " lines";
  }

  Companion companion;
  std::optional<CoreDelegate> delegate;
};

const std::string statusLine = "log: default status -> status 1 ok Optional(true)<private:>";

std::string unknownLine(const std::string& action) {
  return "log: default " + action +
         " -> status 1 ok Optional(false) error TamoCore 64<private: Unknown action>";
}

TEST_F(CoreDelegateTest, NothingIsRequestedBeforeLaunchingHasFinished) {
  launch({"--core-action", "status"});
  EXPECT_FALSE(delegate->requested().has_value());
  finishLaunching();
  EXPECT_EQ(delegate->requested(), "status");
}

TEST_F(CoreDelegateTest, TheActionStartsFourTenthsOfASecondAfterLaunch) {
  launch({"--core-action", "status"});
  finishLaunching();
  EXPECT_EQ(companion.fakes.ledger.textsOf({"queue: "}), Texts{"queue: after 400 ms"});
  EXPECT_TRUE(companion.logLines().empty());
  EXPECT_EQ(performed(), statusLine);
  EXPECT_EQ(companion.fakes.clock.monotonicNow(), milliseconds(400));
}

/// A launch that takes its time does not use the delay up.
TEST_F(CoreDelegateTest, TheDelayIsCountedFromTheEndOfTheLaunch) {
  launch({"--core-action", "status"});
  companion.fakes.clock.advanceTo(std::chrono::seconds(3));
  finishLaunching();
  EXPECT_EQ(performed(), statusLine);
  EXPECT_EQ(companion.fakes.clock.monotonicNow(), milliseconds(3400));
}

TEST_F(CoreDelegateTest, TheFirstSwitchOfTwoIsTheAction) {
  launch({"--core-action", "status", "--core-action", "bogus"});
  finishLaunching();
  EXPECT_EQ(performed(), statusLine);
}

TEST_F(CoreDelegateTest, AnUnknownNameOnTheCommandLineReachesTheDispatchUnchanged) {
  launch({"--core-action", "audit-install"});
  finishLaunching();
  EXPECT_EQ(performed(), unknownLine("audit-install"));
}

TEST_F(CoreDelegateTest, AUrlWithinTheDelayReplacesTheCommandLine) {
  launch({"--core-action", "bogus"});
  finishLaunching();
  urlsAt(milliseconds(399), {"tamo-core://status"});
  EXPECT_EQ(performed(), statusLine);
}

TEST_F(CoreDelegateTest, AUrlBeforeLaunchingHasFinishedIsReplacedByTheCommandLine) {
  launch({"--core-action", "bogus"});
  delegate->application({"tamo-core://status"});
  finishLaunching();
  EXPECT_EQ(performed(), unknownLine("bogus"));
}

TEST_F(CoreDelegateTest, AUrlBeforeLaunchingHasFinishedReplacesTheDefault) {
  launch({});
  delegate->application({"tamo-core://status"});
  finishLaunching();
  EXPECT_EQ(performed(), statusLine);
}

/// A switch without a value asks for nothing, so nothing is taken back.
TEST_F(CoreDelegateTest, AUrlBeforeLaunchingHasFinishedOutlastsASwitchWithoutAValue) {
  launch({"--core-action"});
  delegate->application({"tamo-core://status"});
  finishLaunching();
  EXPECT_EQ(performed(), statusLine);
}

/// An empty value is one: neither the URL before it nor the default takes its place.
TEST_F(CoreDelegateTest, AnEmptyValueOfTheSwitchIsTheAction) {
  launch({"--core-action", ""});
  delegate->application({"tamo-core://status"});
  finishLaunching();
  EXPECT_EQ(delegate->requested(), "");
  EXPECT_EQ(performed(), unknownLine(""));
}

TEST_F(CoreDelegateTest, TheSwitchIsReadOnceAndNotAgainAfterAUrl) {
  launch({"--core-action", "bogus"});
  finishLaunching();
  delegate->application({"tamo-core://status"});
  companion.fakes.mainQueue.runUntilIdle();
  EXPECT_EQ(delegate->requested(), "status");
}

TEST_F(CoreDelegateTest, AUrlThatIsNotAcceptedDoesNotEndTheList) {
  launch({});
  delegate->application(
      {"https://status", "TAMO-CORE://sync", "tamo-core://bogus", "", "tamo-core://status"});
  EXPECT_EQ(delegate->requested(), "status");
  delegate->application({});
  EXPECT_EQ(delegate->requested(), "status");
}

TEST_F(CoreDelegateTest, OfSeveralUrlsTheLastAcceptedOneWins) {
  launch({});
  finishLaunching();
  delegate->application({"tamo-core://status", "tamo-core://bogus", "tamo-core://reseat"});
  EXPECT_EQ(delegate->requested(), "reseat");
  delegate->application({"tamo-core://restart"});
  EXPECT_EQ(delegate->requested(), "restart");
  delegate->application({"tamo-core://move-to-applications"});
  EXPECT_EQ(delegate->requested(), "move-to-applications");
}

TEST_F(CoreDelegateTest, AUrlThatIsNotAcceptedLeavesWhatWasRequestedAndLogsNothing) {
  launch({});
  finishLaunching();
  delegate->application(
      {"tamo-core://reseat", "TAMO-CORE://status", "tamo-core://sync?x=1", "https://status"});
  EXPECT_EQ(delegate->requested(), "reseat");
  EXPECT_TRUE(companion.logLines().empty());
}

TEST_F(CoreDelegateTest, AUrlAfterTheStartChangesNothing) {
  launch({"--core-action", "status"});
  finishLaunching();
  EXPECT_EQ(performed(), statusLine);
  delegate->application({"tamo-core://unregister"});
  companion.fakes.mainQueue.runUntilIdle();
  EXPECT_EQ(companion.logLines(), Texts{statusLine});
  EXPECT_EQ(companion.fakes.ledger.count("application: terminate"), 1U);
}

TEST_F(CoreDelegateTest, WithoutARequestTheInstalledCopyRegisters) {
  companion.fakes.agentServices.status = 0;
  launch({});
  finishLaunching();
  EXPECT_EQ(performed(), "log: default register -> status 1 ok Optional(true)<private:>");
}

TEST_F(CoreDelegateTest, TheSwitchAsLastArgumentLeavesTheDefault) {
  companion.fakes.agentServices.status = 0;
  launch({"--core-action"});
  finishLaunching();
  EXPECT_EQ(performed(), "log: default register -> status 1 ok Optional(true)<private:>");
}

TEST_F(CoreDelegateTest, WithoutARequestAReleaseCopyElsewhereMoves) {
  companion.fakes.bundles.mainBundle =
      "/Users/u/Downloads/Tamo.app/Contents/Library/LoginItems/Tamo Core.app";
  companion.bundle("/Users/u/Downloads/Tamo.app", "studio.pell.Tamo");
  companion.toolsMove();
  launch({});
  finishLaunching();
  EXPECT_EQ(performed(), "log: default move-to-applications -> moved");
}

/// What the default is, is settled at launch; a copy that is installed during the delay does not change it.
TEST_F(CoreDelegateTest, TheDefaultIsFixedWhenLaunchingHasFinished) {
  companion.fakes.bundles.mainBundle =
      "/Users/u/Downloads/Tamo.app/Contents/Library/LoginItems/Tamo Core.app";
  companion.bundle("/Users/u/Downloads/Tamo.app", "studio.pell.Tamo");
  launch({});
  finishLaunching();
  companion.fakes.bundles.mainBundle = "/Applications/Tamo.app/Contents/Library/LoginItems/Tamo Core.app";
  EXPECT_EQ(performed(), "log: error move refused: this Tamo doesn't need moving");
}

/// And not before: the copy that is asked about is the one of the moment at which launching has finished.
TEST_F(CoreDelegateTest, TheDefaultIsNotFixedBeforeLaunchingHasFinished) {
  companion.fakes.agentServices.status = 0;
  companion.runsFrom(Companion::downloads);
  launch({});
  companion.runsFrom("/Applications/Tamo.app");
  finishLaunching();
  EXPECT_EQ(performed(), "log: default register -> status 1 ok Optional(true)<private:>");
}

/// Its own identifier says nothing about a companion: the application around it is the one to be moved.
TEST_F(CoreDelegateTest, WithoutARequestACompanionOfAnUnknownApplicationRegistersAndIsRefused) {
  companion.fakes.bundles.mainBundle =
      "/Users/u/Downloads/Tamo.app/Contents/Library/LoginItems/Tamo Core.app";
  companion.bundle(companion.fakes.bundles.mainBundle, "studio.pell.Tamo");
  launch({});
  finishLaunching();
  EXPECT_EQ(performed().rfind("log: error register refused: ", 0), 0U);
}

TEST_F(CoreDelegateTest, OneLoggerIsMadeWithTheCoresSubsystemAndNothingIsLookedAtYet) {
  launch({});
  EXPECT_EQ(companion.fakes.ledger.texts(), Texts{"logger: studio.pell.Tamo.Core lifecycle"});
}

/// The launch itself asks service management nothing, locks nothing and starts nothing.
TEST_F(CoreDelegateTest, FinishingTheLaunchLooksAtTheCopyAndReturnsAtOnce) {
  launch({"--core-action", "restart"});
  finishLaunching();
  EXPECT_EQ(companion.fakes.ledger.texts(),
            (Texts{"logger: studio.pell.Tamo.Core lifecycle",
                   "files: read /Applications/Tamo.app/Contents/Info.plist", "queue: after 400 ms"}));
  EXPECT_EQ(companion.fakes.clock.monotonicNow(), milliseconds(0));
}

TEST_F(CoreDelegateTest, EveryEntryOffTheMainThreadIsFatal) {
  launch({});
  EXPECT_DEATH(std::thread([this] { delegate->applicationDidFinishLaunching(); }).join(),
               "fatal: applicationDidFinishLaunching entered off the main thread");
  EXPECT_DEATH(std::thread([this] { delegate->application({}); }).join(),
               "fatal: application\\(open:\\) entered off the main thread");
  EXPECT_DEATH(std::thread([this] { launch({}); }).join(), "fatal: CoreDelegate entered off the main thread");
  EXPECT_DEATH(std::thread([this] {
                 auto task = delegate->perform("status");
                 task.start();
               }).join(),
               "fatal: perform entered off the main thread");
}

TEST_F(CoreDelegateTest, AnActionThatStartsOffTheMainThreadIsFatal) {
  launch({});
  delegate->applicationDidFinishLaunching();
  EXPECT_DEATH(std::thread([this] { companion.fakes.mainQueue.runUntilIdle(); }).join(),
               "fatal: the start of the action entered off the main thread");
}

TEST_F(CoreDelegateTest, AnActionThatRaisesWhatNobodyExpectsIsFatalAndNoProcessThatWaitsForEver) {
  companion.fakes.processes.once({"/bin/launchctl", "kickstart"},
                                 {.effect = [] { throw std::runtime_error("no memory is left"); }});
  EXPECT_DEATH(companion.act("register"), "fatal: no memory is left");
}

TEST(CoreMainTest, MakesAnAccessoryWithOneDelegateAndRunsIt) {
  fakes::FakePlatform fakes;
  platform::ApplicationDelegate* whileRunning = nullptr;
  fakes.application.loop = [&] { whileRunning = fakes.application.delegate; };
  CoreMain::main(fakes.platform, {}, {"/program"});
  EXPECT_NE(whileRunning, nullptr);
  EXPECT_EQ(fakes.ledger.texts(), (Texts{"application: accessory", "logger: studio.pell.Tamo.Core lifecycle",
                                         "application: delegate", "application: run"}));
}

}  // namespace
}  // namespace tamo

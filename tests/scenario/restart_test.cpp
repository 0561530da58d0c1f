#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <thread>

#include "stage.hpp"

/// The main job on the real clock: a restart of a Core of every kind, with the exact lines that it leaves in
/// the log.
namespace tamo::scenario {
namespace {

using std::chrono::milliseconds;
using Texts = std::vector<std::string>;

std::string definitionLine(const std::string& changed = "false") {
  const std::string agent =
      "/Applications/Tamo.app/Contents/Library/LoginItems/Tamo Core.app/Contents/MacOS/tamo-core-agent";
  return "default definition: loaded {public:" + agent + "} exit {public:20} · bundled {public:" + agent +
         "} exit {public:20} · changed {public:" + changed + "}";
}

std::string restartLine(const std::string& kickstart) {
  return "default {public:restart} -> status {public:1} ok {public:Optional(true)}{public: kickstart " +
         kickstart + "}{public:}{private}";
}

std::string killed(pid_t group) {
  return "killedGroup(" + std::to_string(group) + ", gone: true)";
}

TEST(RestartScenario, ACoreThatExitsAtOnceIsReplacedAndNobodyIsSignalled) {
  const Stage stage({.core = "term=obey"});
  const auto before = stage.corePid();
  EXPECT_EQ(stage.act("restart").status, 0);
  EXPECT_EQ(stage.lines(), (Texts{definitionLine(), hardStopLine(before, "exited"), restartLine("0")}));
  EXPECT_FALSE(runs(before));
  EXPECT_NE(stage.corePid(), before);
}

TEST(RestartScenario, ACoreThatExitsLateIsGivenItsTime) {
  const Stage stage({.core = "term=late:1000"});
  const auto before = stage.corePid();
  const auto ended = stage.act("restart");
  EXPECT_EQ(stage.lines(), (Texts{definitionLine(), hardStopLine(before, "exited"), restartLine("0")}));
  EXPECT_GE(ended.after, milliseconds(1400));
  EXPECT_LT(ended.after, milliseconds(2400));
}

TEST(RestartScenario, ACoreThatIgnoresTheRequestIsKilledWithItsGroupAfterTwoSeconds) {
  const Stage stage({.core = "term=ignore children=1"});
  const auto before = stage.corePid();
  const auto ended = stage.act("restart");
  EXPECT_EQ(stage.lines(), (Texts{definitionLine(), hardStopLine(before, killed(before)), restartLine("0")}));
  EXPECT_FALSE(runs(before));
  EXPECT_EQ(::kill(-before, 0), -1) << "a member of the group is left";
  const auto after = stage.corePid();
  EXPECT_NE(after, before);
  EXPECT_TRUE(runs(after));
  EXPECT_GE(ended.after, milliseconds(2400));
  EXPECT_LT(ended.after, milliseconds(4000));
}

TEST(RestartScenario, ACoreInItsParentsGroupIsKilledAlone) {
  const Stage stage({.core = "term=ignore group=parent"});
  const auto before = stage.corePid();
  stage.act("restart");
  EXPECT_EQ(stage.lines().at(1),
            hardStopLine(before, "killedProcess(" + std::to_string(before) + ", gone: true)"));
  EXPECT_FALSE(runs(before));
  EXPECT_NE(stage.corePid(), 0) << "the parent lives on";
}

TEST(RestartScenario, ACoreThatStoppedItselfIsKilled) {
  const Stage stage({.core = "stops-itself"});
  const auto before = stage.corePid();
  stage.act("restart");
  EXPECT_EQ(stage.lines().at(1), hardStopLine(before, killed(before)));
}

TEST(RestartScenario, ACoreThatIsBusyWithARevertIsSparedUntilItIsDone) {
  const Stage stage({.core = "term=revert:3200"});
  const auto before = stage.corePid();
  const auto ended = stage.act("restart");
  EXPECT_EQ(stage.lines(),
            (Texts{definitionLine(), hardStopLine(before, "spared(\"revert_restoring\", gone: true)"),
                   restartLine("0")}));
  EXPECT_GE(ended.after, milliseconds(3600));
  EXPECT_FALSE(stage.file(stage.dataDirectory() + "core.db.revert.pending").has_value())
      << "the revert was cut off";
}

TEST(RestartScenario, ACoreThatIsYoungerThanTheCompanionIsSpared) {
  const Stage stage({.core = "term=obey"});
  const auto companion = stage.start({"--core-action", "restart"});
  stage.set("core", "term=late:3200");
  stage.launchctl({"kickstart", "-k", stage.target()});
  const auto young = stage.corePid();
  const auto ended = Stage::finish(companion);
  EXPECT_EQ(stage.lines(), (Texts{definitionLine(), hardStopLine(young, "spared(\"young_core\", gone: true)"),
                                  restartLine("0")}));
  EXPECT_GE(ended.after, milliseconds(3600));
}

TEST(RestartScenario, ACoreOfAReleaseBuildIsSpared) {
  const Stage stage({.core = "term=late:3200"});
  stage::placeCopy(stage.root(), TAMO_BINARY_DIR "/bin", {.build = "1.4.2"});
  const auto before = stage.corePid();
  stage.act("restart");
  EXPECT_EQ(stage.lines().at(1), hardStopLine(before, "spared(\"revert_release\", gone: true)"));
}

TEST(RestartScenario, AKickstartThatFailsWhileTheCoreLivesCallsTheHardStopOff) {
  const Stage stage({.core = "term=ignore", .companion = stage::Companion::Receipts});
  const auto before = stage.corePid();
  stage.set("tool-launchctl", "kickstart fail 5");
  const auto ended = stage.act("restart");
  EXPECT_EQ(stage.lines(), (Texts{definitionLine(), hardStopLine(before, "cancelled"), restartLine("5")}));
  EXPECT_TRUE(runs(before));
  const auto receipt = stage.file(stage.root().home() + "/Library/Application Support/TamoPKG1/M2/" +
                                  std::to_string(ended.pid) + "-core.json");
  ASSERT_TRUE(receipt.has_value());
  EXPECT_THAT(*receipt,
              ::testing::HasSubstr("\"hardStop\" : \"cancelled stopFailed\",\n  \"kickstart\" : 5,\n"));
}

TEST(RestartScenario, AKickstartThatFailsWithoutACoreReseats) {
  const Stage stage;
  stage.set("core", "dies-after:0");
  stage.launchctl({"kickstart", "-k", stage.target()});
  for (int attempt = 0; attempt < 100 && stage.corePidNow() != 0; ++attempt) {
    std::this_thread::sleep_for(milliseconds(20));
  }
  ASSERT_EQ(stage.corePidNow(), 0);
  stage.set("tool-launchctl", "kickstart fail 5");
  stage.set("core", "");
  stage.act("restart");
  EXPECT_EQ(stage.lines(), (Texts{definitionLine(), restartLine("5")})) << "nothing was there to be stopped";
  stage.set("tool-launchctl", "");
  EXPECT_NE(stage.corePid(), 0) << "the reseat started the Core";
}

TEST(RestartScenario, AChangedDefinitionReseatsInstead) {
  const Stage stage;
  const auto before = stage.corePid();
  stage::writeAgentDefinition(stage.root(), "/Applications/Tamo.app", {.exitTimeout = 7, .binary = true});
  stage.act("restart");
  const auto lines = stage.lines();
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_THAT(lines.at(0), ::testing::EndsWith("exit {public:7} · changed {public:true}"));
  EXPECT_EQ(lines.at(1), hardStopLine(before, "exited"));
  EXPECT_EQ(lines.at(2),
            "default {public:restart} -> status {public:1} ok {public:Optional(true)}"
            "{public: reseated definition}{public:}{private}");
  EXPECT_THAT(stage.launchctl({"print", stage.target()}), ::testing::HasSubstr("\texit timeout = 7\n"));
}

}  // namespace
}  // namespace tamo::scenario

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stage.hpp"

/// What rests on launchctl's print of the job, with the print as the newest systems give it and as older ones do.
namespace tamo::scenario {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

class PrintStyleScenario : public ::testing::TestWithParam<const char*> {
 protected:
  /// A stage whose launchctl prints in the style that is played; the newest needs no setting.
  static void setUp(const Stage& stage) {
    if (std::string(GetParam()) == "Older") stage.set("print-style", "older");
  }
  static std::string killed(pid_t core) {
    const auto pid = std::to_string(core);
    return "default hardstop pid {public:" + pid + "}: {public:killedGroup(" + pid + ", gone: true)}";
  }
  /// The bundle asks for another exit timeout than launchd has: the agent's own is 20.
  static void changeTheTimeout(const Stage& stage) {
    stage::writeAgentDefinition(stage.root(), "/Applications/Tamo.app", {.exitTimeout = 7});
  }
};

TEST_P(PrintStyleScenario, IsTheOneThatIsPlayed) {
  const Stage stage;
  setUp(stage);
  EXPECT_EQ(stage.launchctl({"print", stage.target()}).contains("\n\tLWCR = {\n\t\t\"reqs\" => {\n"),
            std::string(GetParam()) == "Newest");
}

TEST_P(PrintStyleScenario, ARestartKillsACoreThatHangs) {
  const Stage stage({.core = "term=ignore children=1"});
  setUp(stage);
  const auto before = stage.corePid();
  stage.act("restart");
  ASSERT_EQ(stage.lines().size(), 3U);
  EXPECT_EQ(stage.lines().at(1), killed(before));
  EXPECT_FALSE(runs(before));
}

TEST_P(PrintStyleScenario, AReseatKillsACoreThatHangs) {
  const Stage stage({.core = "term=ignore"});
  setUp(stage);
  const auto before = stage.corePid();
  stage.act("reseat");
  ASSERT_EQ(stage.lines().size(), 2U);
  EXPECT_EQ(stage.lines().at(0), killed(before));
  EXPECT_FALSE(runs(before));
}

TEST_P(PrintStyleScenario, ASyncSeesAChangedTimeoutAndStopsTheCoreThatHangs) {
  const Stage stage({.core = "term=ignore"});
  setUp(stage);
  const auto before = stage.corePid();
  changeTheTimeout(stage);
  stage.act("sync");
  ASSERT_EQ(stage.lines().size(), 3U);
  EXPECT_THAT(stage.lines().at(0), HasSubstr("exit {public:20} ·"));
  EXPECT_THAT(stage.lines().at(0), EndsWith("exit {public:7} · changed {public:true}"));
  EXPECT_EQ(stage.lines().at(1), killed(before));
}

TEST_P(PrintStyleScenario, ASyncOfAnUnchangedDefinitionLeavesTheCoreAlone) {
  const Stage stage;
  setUp(stage);
  const auto before = stage.corePid();
  stage.act("sync");
  ASSERT_EQ(stage.lines().size(), 2U);
  EXPECT_THAT(stage.lines().at(0), EndsWith("exit {public:20} · changed {public:false}"));
  EXPECT_EQ(stage.corePid(), before);
}

INSTANTIATE_TEST_SUITE_P(Launchctl, PrintStyleScenario, ::testing::Values("Newest", "Older"),
                         [](const auto& style) { return std::string(style.param); });

}  // namespace
}  // namespace tamo::scenario

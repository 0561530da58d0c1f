#include "stage/control/tamo_stage.hpp"

#include <gmock/gmock.h>

#include "stage_command_test.hpp"

namespace tamo::stage {
namespace {

using Words = std::vector<std::string>;

using TamoStageTest = StageCommandTest;

TEST_F(TamoStageTest, AWrongUseIsOneLineAndNoEffect) {
  const std::vector<Words> wrong = {{},
                                    {"sing"},
                                    {"lay"},
                                    {"lay", stage.path + "/x", "--bear"},
                                    {"core", stage.path, "term=obey", "sulks"},
                                    {"approval", stage.path, "maybe"},
                                    {"order", stage.path, "register", "Domain", "one", "text"},
                                    {"order", stage.path, "restart", "Domain", "1", "text"},
                                    {"order", stage.path, "register", "Do\tmain", "1", "text"},
                                    {"tool", stage.path, "launchctl"},
                                    {"tool", stage.path, "launchctl", "sulk"},
                                    {"tool", stage.path, "spoon", "hang"},
                                    {"set", stage.path, "../laid", "x"},
                                    {"set", stage.path, "a", "b", "c"},
                                    {"copy", stage.path, "linked", "--build", "1"},
                                    {"copy", stage.path, "installed", "--program", "other"},
                                    {"definition", stage.path, "--exit-timeout", "soon"},
                                    {"send", stage.path},
                                    {"applications", stage.path, "ajar"},
                                    {"administrator", stage.path, "shrug"},
                                    {"translocate", stage.path},
                                    {"copy", stage.path, "linked", "--quarantined"},
                                    {"open", stage.path},
                                    {"receipt", stage.path, "x"}};
  for (const auto& words : wrong) {
    EXPECT_EQ(run(words), 2) << errors;
    EXPECT_EQ(std::ranges::count(errors, '\n'), 1) << errors;
    EXPECT_EQ(output, "");
  }
  EXPECT_TRUE(std::filesystem::is_empty(stage.path + "/.stage/settings"));
  EXPECT_FALSE(std::filesystem::exists(stage.path + "/x"));
}

TEST_F(TamoStageTest, WhatIsNoStageIsRefused) {
  EXPECT_EQ(run({"core", "/tmp", "term=ignore"}), 1);
  EXPECT_EQ(errors, "tamo-stage core: /tmp is no stage\n");
}

TEST_F(TamoStageTest, OrdersBecomeSettings) {
  EXPECT_EQ(run({"core", stage.path, "term=ignore", "children=2"}), 0);
  EXPECT_EQ(run({"approval", stage.path, "withheld"}), 0);
  EXPECT_EQ(run({"order", stage.path, "unregister", "D", "-5", "not now"}), 0);
  EXPECT_EQ(run({"set", stage.path, "print-style", "older"}), 0);
  EXPECT_EQ(stage.root.setting("core"), "term=ignore children=2");
  EXPECT_EQ(stage.root.setting("approval"), "withheld");
  EXPECT_EQ(stage.root.setting("next-unregister-error"), "D\t-5\tnot now");
  EXPECT_EQ(stage.root.setting("print-style"), "older");
}

TEST_F(TamoStageTest, WithoutAWordASettingIsCleared) {
  stage.root.set("core", "term=ignore");
  stage.root.set("print-style", "older");
  EXPECT_EQ(run({"core", stage.path}), 0);
  EXPECT_EQ(run({"set", stage.path, "print-style"}), 0);
  EXPECT_EQ(stage.root.setting("core"), std::nullopt);
  EXPECT_EQ(stage.root.setting("print-style"), std::nullopt);
}

TEST_F(TamoStageTest, AToolsFaultsAreKeptPerVerb) {
  EXPECT_EQ(run({"tool", stage.path, "launchctl", "fail", "1"}), 0);
  EXPECT_EQ(run({"tool", stage.path, "launchctl", "--on", "print", "slow", "5"}), 0);
  EXPECT_EQ(stage.root.setting("tool-launchctl"), "* fail 1\nprint slow 5");
  EXPECT_EQ(run({"tool", stage.path, "launchctl", "--on", "print", "real"}), 0);
  EXPECT_EQ(stage.root.setting("tool-launchctl"), "* fail 1");
  EXPECT_EQ(run({"tool", stage.path, "launchctl", "real"}), 0);
  EXPECT_EQ(stage.root.setting("tool-launchctl"), std::nullopt);
}

TEST_F(TamoStageTest, ReceiptsArePrintedAllOrOne) {
  const std::string folder = "/Users/tamo/Library/Application Support/TamoPKG1/M2/";
  EXPECT_EQ(run({"receipt", stage.path}), 1);
  stage.write(folder + "7-core.json", "{seven}");
  stage.write(folder + "8-core.json", "{eight}");
  EXPECT_EQ(run({"receipt", stage.path}), 0);
  EXPECT_EQ(output, "{seven}\n{eight}\n");
  EXPECT_EQ(run({"receipt", stage.path, "8"}), 0);
  EXPECT_EQ(output, "{eight}\n");
  EXPECT_EQ(run({"receipt", stage.path, "9"}), 1);
}

TEST_F(TamoStageTest, HelpNamesEveryCommandOnOneScreen) {
  EXPECT_EQ(run({"help"}), 0);
  for (const auto* name :
       {"lay",         "strike", "copy",   "definition", "run",       "send",         "core",
        "approval",    "order",  "tool",   "set",        "launchctl", "applications", "administrator",
        "translocate", "open",   "status", "ps",         "log",       "receipt",      "picture"})
    EXPECT_THAT(output, ::testing::HasSubstr(std::string("\n  ") + name + " R")) << name;
  EXPECT_LE(std::ranges::count(output, '\n'), 50);
}

}  // namespace
}  // namespace tamo::stage

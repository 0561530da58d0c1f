#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

#include "scenario/move_stage.hpp"
#include "stage/common/rights.hpp"

/// Moves into an /Applications that the user may not write to. The kernel keeps the folder closed; the
/// administrator's copy is made by another process, which may write there.
namespace tamo::scenario {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;
using Trash = std::map<std::string, std::string>;

const std::string prompt = "asked: Tamo wants to move itself into your Applications folder.";
const std::string script =
    "do shell script (\"/usr/bin/ditto \" & quoted form of item 1 of argv & \" \" & quoted form of item 2 of "
    "argv & \" && /usr/bin/xattr -dr com.apple.quarantine \" & quoted form of item 2 of argv) with prompt "
    "\"Tamo wants to move itself into your Applications folder.\" with administrator privileges";

class MoveRightsScenario : public ::testing::Test {
 protected:
  MoveRightsScenario() { stage::closeApplications(stage.root()); }

  void expectNothingMoved(const std::string& code) const {
    EXPECT_EQ(stage.result(), resultOf(code));
    EXPECT_EQ(stage.stage().lines(), Texts{moveLine(code)});
    EXPECT_FALSE(stage.exists(installedPath));
    EXPECT_EQ(stage.tree(downloadedPath), original);
    EXPECT_EQ(stage.trash(), Trash{});
    EXPECT_EQ(stage.front(), "none");
  }

  const MoveStage stage;
  const Tree original = stage.tree(downloadedPath);
};

TEST_F(MoveRightsScenario, TheAdministratorCopiesOnceTheUserAgrees) {
  stage.move();
  EXPECT_EQ(stage.tree(installedPath), original);
  EXPECT_EQ(stage.marked(installedPath), 0);
  EXPECT_EQ(stage.prompts(), (Texts{prompt, "answered: agree"}));
  EXPECT_EQ(stage.osascriptArguments(),
            (Texts{"-e", "on run argv", "-e", script, "-e", "end run", downloadedPath, installedPath}));
  EXPECT_EQ(stage.result(), resultOf("moved"));
  EXPECT_EQ(stage.trash(), (Trash{{"Tamo.app", "5000"}}));
  EXPECT_EQ(stage.front(), installedPath);
}

TEST_F(MoveRightsScenario, ACancelledPromptCancelsTheMove) {
  stage::chooseAdministrator(stage.root(), "cancel");
  stage.move();
  expectNothingMoved("cancelled");
  EXPECT_EQ(stage.prompts(), (Texts{prompt, "answered: cancel"}));
}

TEST_F(MoveRightsScenario, ARefusedPromptIsNotWritable) {
  stage::chooseAdministrator(stage.root(), "refuse");
  stage.move();
  expectNothingMoved("not_writable");
}

TEST_F(MoveRightsScenario, AWrongPasswordIsNotWritable) {
  stage::chooseAdministrator(stage.root(), "wrong-password");
  stage.move();
  expectNothingMoved("not_writable");
}

TEST_F(MoveRightsScenario, AnOsascriptThatCannotStartIsNotWritable) {
  stage::chooseAdministrator(stage.root(), "not-there");
  stage.move();
  expectNothingMoved("not_writable");
  EXPECT_EQ(stage.prompts(), Texts{});
}

TEST_F(MoveRightsScenario, AnOsascriptThatDiesIsNotWritable) {
  stage.root().set("tool-osascript", "* die 9");
  stage.move();
  expectNothingMoved("not_writable");
}

TEST_F(MoveRightsScenario, AnAdministratorsCopyThatFailsIsNotWritable) {
  stage.root().set("tool-ditto", "administrator fail 1");
  stage.move();
  expectNothingMoved("not_writable");
}

TEST_F(MoveRightsScenario, AnInstalledCopyThatMayNotBeTrashedIsLeftAlone) {
  stage::openApplications(stage.root());
  stage.install("4999");
  stage::closeApplications(stage.root());
  const auto installed = stage.tree(installedPath);
  stage.move();
  EXPECT_EQ(stage.result(), resultOf("not_writable"));
  EXPECT_EQ(stage.tree(installedPath), installed);
  EXPECT_EQ(stage.tree(downloadedPath), original);
  EXPECT_EQ(stage.prompts(), Texts{}) << "no copy is tried";
  EXPECT_EQ(stage.front(), "none");
}

/// The user may empty what the administrator has left, because it is the user's own, but not take it out of
/// the folder: a folder stays that the next move takes for an installed copy.
TEST_F(MoveRightsScenario, OfAnAdministratorsHalfCopyAnEmptyFolderStays) {
  stage.root().set("tool-ditto", "administrator cut 4096");
  stage.move();
  EXPECT_EQ(stage.result(), resultOf("not_writable"));
  EXPECT_TRUE(stage.exists(installedPath));
  EXPECT_EQ(stage.tree(installedPath), Tree{});
  EXPECT_EQ(stage.tree(downloadedPath), original);
  EXPECT_EQ(stage.trash(), Trash{});
  EXPECT_EQ(stage.front(), "none");
}

TEST_F(MoveRightsScenario, AMarkThatTheAdministratorCannotClearFailsTheMove) {
  stage.root().set("tool-xattr", "administrator fail 1");
  stage.move();
  EXPECT_EQ(stage.result(), resultOf("not_writable"));
  EXPECT_EQ(stage.tree(installedPath), Tree{});
  EXPECT_EQ(stage.tree(downloadedPath), original);
}

TEST_F(MoveRightsScenario, ThePromptMayStayOnTheScreenAsLongAsItLikes) {
  stage::chooseAdministrator(stage.root(), "wait");
  const auto companion = stage.startMove();
  ASSERT_TRUE(eventually([this] { return !stage.prompts().empty(); }));
  std::this_thread::sleep_for(std::chrono::milliseconds(600));
  EXPECT_TRUE(runs(companion.pid));
  EXPECT_EQ(stage.result(), "none");
  EXPECT_EQ(stage.stage().lines(), Texts{});
  EXPECT_EQ(stage.tree(downloadedPath), original);
  stage::chooseAdministrator(stage.root(), "agree");
  EXPECT_EQ(Stage::finish(companion).status, 0);
  EXPECT_EQ(stage.result(), resultOf("moved"));
}

/// Each name would leave a trace in the stage's directory, or break the command, if any part of it were read
/// as script or as shell.
class ANameThatLooksLikeCode : public ::testing::TestWithParam<const char*> {};

TEST_P(ANameThatLooksLikeCode, IsOnlyAName) {
  const MoveStage stage;
  stage::closeApplications(stage.root());
  const auto path = std::string("/Users/tamo/Downloads/") + GetParam() + "/Tamo.app";
  stage.place({.where = path, .build = "5000", .quarantined = true});
  const auto original = stage.tree(path);
  stage.move(path);
  EXPECT_EQ(stage.tree(installedPath), original);
  EXPECT_EQ(stage.marked(installedPath), 0);
  EXPECT_EQ(stage.osascriptArguments(),
            (Texts{"-e", "on run argv", "-e", script, "-e", "end run", path, installedPath}));
  EXPECT_FALSE(fs::exists(stage.root().directory() + "/evaluated"));
  EXPECT_FALSE(stage.exists(path));
  EXPECT_EQ(stage.result(), resultOf("moved"));
}
INSTANTIATE_TEST_SUITE_P(
    MoveRightsScenario, ANameThatLooksLikeCode,
    ::testing::Values("with blanks  two", "it's", "'; cd \"$TAMO_STAGE\"; touch evaluated; '",
                      "$(cd $TAMO_STAGE; touch evaluated)", "`cd $TAMO_STAGE; touch evaluated`",
                      "\" & (do shell script \"cd $TAMO_STAGE; touch evaluated\") & \"",
                      R"(back\slash \\ \n \' \")", "line\nbreak\n", "Überfluß 東京 e\xCC\x81", "-rf", "-128",
                      "a && b || c; d > e < f | g & h", "* ? [a] {b,c} ~ ! # %"));

}  // namespace
}  // namespace tamo::scenario

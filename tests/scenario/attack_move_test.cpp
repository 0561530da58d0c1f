#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "scenario/attack.hpp"
#include "scenario/move_stage.hpp"
#include "stage/common/rights.hpp"
#include "stage/common/stage_census.hpp"

/// Somebody who exchanges bundles, folders and files while a real move runs, held up at the moments that matter.
namespace tamo::scenario {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;
using Trash = std::map<std::string, std::string>;

class AttackOnTheMove : public ::testing::Test {
 protected:
  [[nodiscard]] std::string host(const std::string& path) const { return stage.root().host(path); }
  [[nodiscard]] bool toolRuns(const std::string& tool) const {
    const auto processes = stage::processesOfStage(stage.root().directory());
    return std::ranges::any_of(
        processes, [&](const auto& one) { return one.command.starts_with("/usr/bin/" + tool + " "); });
  }
  /// Moves, and gives somebody a turn before the tool has done anything.
  void moveWith(const std::string& tool, const std::function<void()>& turn) {
    stage.root().set("tool-" + tool, "* pause");
    const auto companion = stage.startMove();
    ASSERT_TRUE(eventually([&] { return toolRuns(tool); }));
    turn();
    stage.root().set("tool-" + tool, std::nullopt);
    EXPECT_EQ(Stage::finish(companion).status, 0);
  }
  /// A link to a folder, in place of what is there.
  void linkTo(const std::string& target, const std::string& path) const {
    const fs::path place = host(path);
    fs::remove_all(place);
    fs::create_directory_symlink(fs::path(host(target)).lexically_relative(place.parent_path()), place);
  }

  const MoveStage stage;
  const Tree original = stage.tree(downloadedPath);
  Victim victim{stage.root()};
};

TEST_F(AttackOnTheMove, ALinkInTheDestinationFromTheBeginningIsLeftAlone) {
  linkTo(Victim::folder, installedPath);
  stage.move();
  EXPECT_TRUE(victim.isUnharmed());
  EXPECT_EQ(stage.result(), resultOf("opened"));
  EXPECT_EQ(stage.tree(downloadedPath), original);
}

/// Of a link that leads to an older copy the link goes to the Trash.
TEST_F(AttackOnTheMove, ALinkToAnOlderCopyIsTrashedItself) {
  stage.place({.where = "/Users/tamo/Documents/Tamo.app", .build = "4000"});
  const auto older = stage.tree("/Users/tamo/Documents/Tamo.app");
  linkTo("/Users/tamo/Documents/Tamo.app", installedPath);
  stage.move();
  EXPECT_EQ(stage.tree("/Users/tamo/Documents/Tamo.app"), older);
  EXPECT_EQ(stage.tree(installedPath), original);
  EXPECT_TRUE(fs::is_symlink(host(trashPath + "/Tamo.app")));
}

/// What does not hold: the copying tool follows a link that somebody who may write to /Applications laid there after the
/// look. What is below it stays, but for what has the name of a part of the copy.
TEST_F(AttackOnTheMove, ALinkLaidInTheDestinationAfterTheLookIsCopiedThrough) {
  moveWith("ditto", [&] { linkTo(Victim::folder, installedPath); });
  EXPECT_EQ(stage.result(), resultOf("moved"));
  EXPECT_TRUE(fs::exists(host(Victim::folder + "/Contents/Info.plist")));
  fs::remove_all(host(Victim::folder + "/Contents"));
  EXPECT_TRUE(victim.isUnharmed());
}

/// A link to a file fails the copy; what is cleared away then is the link, not where it leads.
TEST_F(AttackOnTheMove, ALinkLaidInTheDestinationOfACopyThatFailsIsRemovedItself) {
  moveWith("ditto", [&] { victim.lay(Trap::Link, installedPath); });
  EXPECT_EQ(stage.result(), resultOf("copy_failed"));
  EXPECT_TRUE(victim.isUnharmed());
  EXPECT_FALSE(fs::is_symlink(host(installedPath)));
  EXPECT_EQ(stage.tree(downloadedPath), original);
}

/// Between the copy and the way of the old one into the Trash.
TEST_F(AttackOnTheMove, AnOldCopyThatIsExchangedForALinkIsTrashedAsTheLink) {
  moveWith("xattr", [&] { linkTo(Victim::folder, downloadedPath); });
  EXPECT_TRUE(victim.isUnharmed());
  EXPECT_EQ(stage.tree(installedPath), original);
  EXPECT_TRUE(fs::is_symlink(host(trashPath + "/Tamo.app")));
  EXPECT_EQ(stage.result(), resultOf("moved"));
}

/// A folder of somebody's that has taken the place of the old copy by then goes to the Trash, from where it can be had back.
TEST_F(AttackOnTheMove, AnOldCopyThatIsExchangedForAFolderIsTrashedWhole) {
  moveWith("xattr", [&] {
    fs::remove_all(host(downloadedPath));
    fs::rename(host(Victim::folder), host(downloadedPath));
  });
  EXPECT_FALSE(stage.exists(downloadedPath));
  fs::rename(host(trashPath + "/Tamo.app"), host(Victim::folder));
  EXPECT_TRUE(victim.isUnharmed());
}

/// What does not hold: nobody looks at a signature, and what lies in the destination when it is opened is opened.
TEST_F(AttackOnTheMove, ADestinationThatIsExchangedAfterTheCopyIsOpenedAsItIs) {
  moveWith("xattr",
           [&] { stage.place({.where = "installed", .bundleID = "com.example.other", .build = "1"}); });
  EXPECT_EQ(stage.result(), resultOf("moved"));
  EXPECT_EQ(stage.front(), installedPath);
  EXPECT_EQ(stage.build(installedPath), "1");
}

/// What does not hold: the copy is made of what lies there when the tool begins, with the administrator's rights as
/// without; a program of the same user can exchange it while the prompt is on the screen.
TEST_F(AttackOnTheMove, ACopyThatIsExchangedWhileThePromptIsOpenIsInstalled) {
  stage::closeApplications(stage.root());
  stage::chooseAdministrator(stage.root(), "wait");
  const auto companion = stage.startMove();
  ASSERT_TRUE(eventually([&] { return !stage.prompts().empty(); }));
  stage.place({.where = "downloaded", .bundleID = "com.example.other", .build = "6666"});
  stage::chooseAdministrator(stage.root(), "agree");
  Stage::finish(companion);
  EXPECT_EQ(stage.result(), resultOf("moved"));
  EXPECT_EQ(stage.build(installedPath), "6666");
}

TEST_F(AttackOnTheMove, NoTrapInThePlaceOfTheResultIsWrittenThrough) {
  stage.install("5000");
  const auto path = resultFolder + "/move-to-applications.json";
  for (const auto trap : everyTrap) {
    SCOPED_TRACE(nameOf(trap));
    fs::create_directories(host(resultFolder));
    victim.lay(trap, path);
    EXPECT_EQ(stage.move().status, 0);
    EXPECT_TRUE(victim.isUnharmed());
    const bool inTheWay = trap == Trap::Folder || trap == Trap::FolderWithLink;
    EXPECT_EQ(stage.result(), inTheWay ? "none" : resultOf("opened"));
  }
}

/// The list that says which build it is, and to whom it belongs, is read while the job lock is held.
TEST_F(AttackOnTheMove, AListThatIsNoFileIsAnUnknownBuildAndNobodyWaits) {
  for (const auto trap : {Trap::Pipe, Trap::HeldPipe, Trap::Folder, Trap::DanglingLink, Trap::OtherFile}) {
    SCOPED_TRACE(nameOf(trap));
    stage.install("1");
    victim.lay(trap, installedPath + "/Contents/Info.plist");
    EXPECT_LT(stage.move().after, std::chrono::seconds(10));
    EXPECT_EQ(stage.result(), resultOf("opened")) << "what cannot be read is never replaced";
    EXPECT_EQ(stage.tree(downloadedPath), original);
  }
}

TEST_F(AttackOnTheMove, AMoverWhoseOwnListIsNoFileRefuses) {
  for (const auto trap : {Trap::Pipe, Trap::HeldPipe, Trap::Folder, Trap::DanglingLink, Trap::OtherFile}) {
    SCOPED_TRACE(nameOf(trap));
    victim.lay(trap, downloadedPath + "/Contents/Info.plist");
    EXPECT_LT(stage.move().after, std::chrono::seconds(10));
    EXPECT_EQ(stage.stage().lines().back(), refusedLine);
    EXPECT_FALSE(stage.exists(installedPath));
  }
}

/// A list of 20 MB with a number of holes: it is read and is none that the stage takes for a list.
TEST_F(AttackOnTheMove, AHugeListIsAnUnknownBuild) {
  stage.install("1");
  fs::resize_file(host(installedPath + "/Contents/Info.plist"), 20'000'000);
  EXPECT_LT(stage.move().after, std::chrono::seconds(10));
  EXPECT_EQ(stage.result(), resultOf("opened"));
}

/// What does not hold: the identifier of an inner bundle is taken into the result's path as it is. The file is always
/// named move-to-applications.json and says nothing but how the move went.
TEST_F(AttackOnTheMove, AnInnerBundlesIdentifierMayLeadTheResultElsewhere) {
  // A Mac always has this folder, through which the path leads.
  fs::create_directories(host("/Users/tamo/Library/Containers"));
  const auto inner = downloadedPath + "/Contents/Library/LoginItems/Inner.app";
  stage.place({.where = inner, .bundleID = "../../Documents", .build = "5000"});
  stage.move(inner);
  EXPECT_TRUE(
      stage.exists(Victim::folder + "/Data/Library/Application Support/Tamo/move-to-applications.json"));
  EXPECT_EQ(stage.result(), "none");
  fs::remove_all(host(Victim::folder + "/Data"));
  EXPECT_TRUE(victim.isUnharmed());
}

/// Names that a log, a terminal, a shell or a reader of UTF-8 might take for something else.
const Texts oddNames{"\x01\x1b[2J\r\x7f\b", "\xff\xfe\x80 no UTF-8", "a\tb\nc\\d\\n{public:x}",
                     "'\"$(touch evaluated)`touch evaluated`\n'; touch evaluated",
                     std::string(200, 'x') + "/" + std::string(200, '\'') + "/" + std::string(200, '"')};

TEST_F(AttackOnTheMove, AnOddNameIsNothingButANameForTheAdministratorsCommand) {
  for (const auto& name : oddNames) {
    SCOPED_TRACE(testing::PrintToString(name));
    const MoveStage closed;
    stage::closeApplications(closed.root());
    const auto path = "/Users/tamo/Downloads/" + name + "/Tamo.app";
    closed.place({.where = path, .build = "5000", .quarantined = true});
    const auto tree = closed.tree(path);
    closed.move(path);
    EXPECT_EQ(closed.tree(installedPath), tree);
    EXPECT_EQ(closed.osascriptArguments().at(6), path);
    EXPECT_EQ(closed.stage().lines(), Texts{moveLine("moved")});
    EXPECT_FALSE(fs::exists(closed.root().directory() + "/evaluated"));
  }
}

}  // namespace
}  // namespace tamo::scenario

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "scenario/move_stage.hpp"

/// Which copy moves, what becomes of the one that is installed, and which copies stay where they are.
namespace tamo::scenario {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;
using Trash = std::map<std::string, std::string>;

TEST(MovePlanScenario, ADownloadedCopyMovesWholeWhereNothingIsInstalled) {
  const MoveStage stage;
  const auto original = stage.tree(downloadedPath);
  ASSERT_GT(stage.marked(downloadedPath), 5);
  EXPECT_EQ(stage.move().status, 0);
  EXPECT_EQ(stage.tree(installedPath), original);
  EXPECT_EQ(stage.marked(installedPath), 0);
  EXPECT_EQ(stage.trash(), (Trash{{"Tamo.app", "5000"}}));
  EXPECT_FALSE(stage.exists(downloadedPath));
  EXPECT_EQ(stage.result(), resultOf("moved"));
  EXPECT_EQ(stage.stage().lines(), Texts{moveLine("moved")});
  EXPECT_EQ(stage.front(), installedPath);
  EXPECT_EQ(stage.prompts(), Texts{});
}

TEST(MovePlanScenario, WithoutARequestADownloadedCopyMoves) {
  const MoveStage stage;
  Stage::finish(stage.stage().start({}, "downloaded"));
  EXPECT_EQ(stage.stage().lines(), Texts{moveLine("moved")});
  EXPECT_EQ(stage.build(installedPath), "5000");
}

TEST(MovePlanScenario, AnOlderInstalledBuildGoesToTheTrash) {
  const MoveStage stage;
  stage.install("4999");
  stage.move();
  EXPECT_EQ(stage.build(installedPath), "5000");
  const auto trash = stage.trash();
  ASSERT_EQ(trash.size(), 2U);
  EXPECT_EQ(trash.at("Tamo.app"), "4999") << "the installed copy goes first";
  EXPECT_EQ(trash.begin()->second, "5000");
  EXPECT_EQ(stage.result(), resultOf("moved"));
  EXPECT_EQ(stage.front(), installedPath);
}

class AnInstalledCopyThatStays : public ::testing::TestWithParam<const char*> {};

TEST_P(AnInstalledCopyThatStays, IsOpenedAndNothingMoves) {
  const MoveStage stage;
  stage.install(GetParam());
  const auto installed = stage.tree(installedPath);
  stage.move();
  EXPECT_EQ(stage.tree(installedPath), installed);
  EXPECT_EQ(stage.build(downloadedPath), "5000");
  EXPECT_EQ(stage.trash(), Trash{});
  EXPECT_EQ(stage.result(), resultOf("opened"));
  EXPECT_EQ(stage.stage().lines(), Texts{moveLine("opened")});
  EXPECT_EQ(stage.front(), installedPath);
}
INSTANTIATE_TEST_SUITE_P(MovePlanScenario, AnInstalledCopyThatStays,
                         ::testing::Values("5000", "5000.9", "5001", "99999", "unreadable", ""));

TEST(MovePlanScenario, ACopyWhoseOwnBuildIsUnreadableReplacesNothing) {
  const MoveStage stage;
  stage.install("1");
  stage.place({.where = "downloaded", .build = "beta"});
  stage.move();
  EXPECT_EQ(stage.build(installedPath), "1");
  EXPECT_EQ(stage.result(), resultOf("opened"));
}

TEST(MovePlanScenario, OfATranslocatedCopyTheOriginalGoesToTheTrash) {
  const MoveStage stage;
  const auto path = stage::translocateCopy(stage.root(), downloadedPath, stage::Original::Known);
  stage.move("translocated");
  EXPECT_EQ(stage.build(installedPath), "5000");
  EXPECT_EQ(stage.trash(), (Trash{{"Tamo.app", "5000"}}));
  EXPECT_FALSE(stage.exists(downloadedPath));
  EXPECT_EQ(stage.build(path), "5000");
  EXPECT_EQ(stage.result(), resultOf("moved"));
}

TEST(MovePlanScenario, ATranslocatedCopyOfUnknownOriginLeavesEverythingWhereItIs) {
  const MoveStage stage;
  const auto path = stage::translocateCopy(stage.root(), downloadedPath, stage::Original::Unknown);
  stage.move("translocated");
  EXPECT_EQ(stage.build(installedPath), "5000");
  EXPECT_EQ(stage.trash(), Trash{});
  EXPECT_EQ(stage.build(downloadedPath), "5000");
  EXPECT_EQ(stage.build(path), "5000");
  EXPECT_EQ(stage.result(), resultOf("moved"));
}

TEST(MovePlanScenario, AnOriginalThatIsTheDestinationIsNeverTrashed) {
  const MoveStage stage;
  stage::translocateCopy(stage.root(), downloadedPath, stage::Original::Known);
  std::ofstream(stage.root().control("translocated"))
      << stage::copyPath(stage.root(), "translocated") << "\t/Applications/../Applications/Tamo.app/\n";
  stage.move("translocated");
  EXPECT_EQ(stage.build(installedPath), "5000");
  EXPECT_EQ(stage.trash(), Trash{});
}

TEST(MovePlanScenario, CopiesThatBelongWhereTheyAreRefuse) {
  const MoveStage stage;
  stage.install("4999");
  stage.place({.where = "staged", .build = "6000"});
  stage.place({.where = "downloaded", .bundleID = "studio.pell.Tamo.dev", .build = "6000"});
  const auto installed = stage.tree(installedPath);
  for (const auto* copy : {"installed", "staged", "downloaded"})
    EXPECT_EQ(stage.move(copy).status, 0) << copy;
  EXPECT_EQ(stage.stage().lines(), (Texts{refusedLine, refusedLine, refusedLine}));
  EXPECT_EQ(stage.result(), "none");
  EXPECT_FALSE(stage.exists("/Users/tamo/Library/Containers"));
  EXPECT_EQ(stage.front(), "none");
  EXPECT_EQ(stage.tree(installedPath), installed);
  EXPECT_EQ(stage.trash(), Trash{});
}

/// Such a copy belongs to the application around it, and is judged by that.
TEST(MovePlanScenario, ACopyInAnotherApplicationsLoginItemsRefuses) {
  const MoveStage stage;
  stage.place({.where = "/Users/tamo/Other.app", .bundleID = "com.example.other"});
  const std::string inner = "/Users/tamo/Other.app/Contents/Library/LoginItems/Tamo.app";
  stage.place({.where = inner, .build = "5000"});
  stage.move(inner);
  EXPECT_EQ(stage.stage().lines(), Texts{refusedLine});
  EXPECT_EQ(stage.build(inner), "5000");
  EXPECT_FALSE(stage.exists(installedPath));
}

TEST(MovePlanScenario, AnInstalledCopyReachedThroughALinkIsOpened) {
  const MoveStage stage;
  stage.install("5000");
  stage.place({.where = "linked"});
  stage.move("linked");
  EXPECT_EQ(stage.stage().lines(), Texts{moveLine("opened")});
  EXPECT_TRUE(stage.exists("/Users/tamo/Desktop/Tamo.app"));
  EXPECT_EQ(stage.trash(), Trash{});
  EXPECT_EQ(stage.front(), installedPath);
}

TEST(MovePlanScenario, OfACopyReachedThroughALinkTheLinkIsTrashed) {
  const MoveStage stage;
  fs::create_symlink("../Downloads/Tamo.app", stage.root().host("/Users/tamo/Desktop/Tamo.app"));
  const auto original = stage.tree(downloadedPath);
  stage.move("linked");
  EXPECT_EQ(stage.tree(installedPath), original);
  EXPECT_FALSE(fs::is_symlink(stage.root().host(installedPath)));
  EXPECT_EQ(stage.trash(), (Trash{{"Tamo.app", "link"}}));
  EXPECT_EQ(stage.tree(downloadedPath), original);
}

}  // namespace
}  // namespace tamo::scenario

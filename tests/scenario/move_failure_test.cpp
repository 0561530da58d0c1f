#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "scenario/full_disk.hpp"
#include "scenario/move_stage.hpp"
#include "stage/common/stage_census.hpp"

/// What goes wrong on the way: the result says so, the destination is whole or absent, and the application is
/// never lost.
namespace tamo::scenario {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;
using Trash = std::map<std::string, std::string>;

class MoveFailureScenario : public ::testing::Test {
 protected:
  void expectCopyFailed() const {
    EXPECT_EQ(stage.result(), resultOf("copy_failed"));
    EXPECT_EQ(stage.stage().lines(), Texts{moveLine("copy_failed")});
    EXPECT_FALSE(stage.exists(installedPath));
    EXPECT_EQ(stage.tree(downloadedPath), original);
    EXPECT_EQ(stage.front(), "none");
    EXPECT_EQ(stage.prompts(), Texts{}) << "the administrator would not help";
  }
  void expectMoved() const {
    EXPECT_EQ(stage.stage().lines(), Texts{moveLine("moved")});
    EXPECT_EQ(stage.tree(installedPath), original);
    EXPECT_EQ(stage.front(), installedPath);
  }
  [[nodiscard]] bool dittoRuns() const {
    const auto processes = stage::processesOfStage(stage.root().directory());
    return std::ranges::any_of(processes,
                               [](const auto& one) { return one.command.starts_with("/usr/bin/ditto "); });
  }
  void remove(const std::string& path) const { fs::remove_all(stage.root().host(path)); }
  void layFile(const std::string& path) const { std::ofstream(stage.root().host(path)) << "in the way"; }

  const MoveStage stage;
  const Tree original = stage.tree(downloadedPath);
};

class ADittoThatFails : public ::testing::TestWithParam<const char*> {};

TEST_P(ADittoThatFails, LeavesTheDestinationEmptyAndTheSourceWhole) {
  const MoveStage stage;
  const auto original = stage.tree(downloadedPath);
  stage.root().set("tool-ditto", std::string("* ") + GetParam());
  EXPECT_EQ(stage.move().status, 0);
  EXPECT_EQ(stage.result(), resultOf("copy_failed"));
  EXPECT_EQ(stage.stage().lines(), Texts{moveLine("copy_failed")});
  EXPECT_FALSE(stage.exists(installedPath));
  EXPECT_EQ(stage.tree(downloadedPath), original);
  EXPECT_EQ(stage.trash(), Trash{});
  EXPECT_EQ(stage.front(), "none");
}
INSTANTIATE_TEST_SUITE_P(MoveFailureScenario, ADittoThatFails,
                         ::testing::Values("fail 1", "fail 255", "die 9", "die 15", "cut 0", "cut 700",
                                           "cut 100000"));

TEST_F(MoveFailureScenario, ADittoThatIsNotThereIsAFailedCopy) {
  remove("/usr/bin/ditto");
  stage.move();
  expectCopyFailed();
}

TEST_F(MoveFailureScenario, ADittoThatFloodsItsErrorsStillCopies) {
  stage.root().set("tool-ditto", "* flood 300000");
  stage.move();
  expectMoved();
}

TEST_F(MoveFailureScenario, AFullDiskIsAFailedCopy) {
  const FullDisk disk(stage.root());
  RecordProperty("full", disk.kind());
  stage.move();
  expectCopyFailed();
}

TEST_F(MoveFailureScenario, AReplacementThatFailsHasLeftTheOldCopyInTheTrash) {
  stage.install("4999");
  stage.root().set("tool-ditto", "* cut 700");
  stage.move();
  expectCopyFailed();
  EXPECT_EQ(stage.trash(), (Trash{{"Tamo.app", "4999"}}));
}

class AnXattrThatFails : public ::testing::TestWithParam<const char*> {};

TEST_P(AnXattrThatFails, LeavesTheMarkAndTheMoveGoesOn) {
  const MoveStage stage;
  const auto original = stage.tree(downloadedPath);
  const auto marks = stage.marked(downloadedPath);
  stage.root().set("tool-xattr", std::string("* ") + GetParam());
  stage.move();
  EXPECT_EQ(stage.tree(installedPath), original);
  EXPECT_EQ(stage.marked(installedPath), marks);
  EXPECT_EQ(stage.result(), resultOf("moved"));
  EXPECT_EQ(stage.trash(), (Trash{{"Tamo.app", "5000"}}));
  EXPECT_EQ(stage.front(), installedPath);
}
INSTANTIATE_TEST_SUITE_P(MoveFailureScenario, AnXattrThatFails, ::testing::Values("fail 1", "die 9"));

TEST_F(MoveFailureScenario, AnXattrThatIsNotThereIsIgnored) {
  remove("/usr/bin/xattr");
  stage.move();
  expectMoved();
  EXPECT_EQ(stage.result(), resultOf("moved"));
}

/// The copy is written into what is there by then, as the tool does; whose files those were, nobody asks.
TEST_F(MoveFailureScenario, ADestinationThatAppearsMeanwhileIsWrittenInto) {
  stage.root().set("tool-ditto", "* pause");
  const auto companion = stage.startMove();
  ASSERT_TRUE(eventually([this] { return dittoRuns(); }));
  stage.install("9000");
  std::ofstream(stage.root().host(installedPath + "/Contents/extra")) << "of another installer";
  stage.root().set("tool-ditto", std::nullopt);
  Stage::finish(companion);
  auto copied = stage.tree(installedPath);
  EXPECT_EQ(copied.erase("Contents/extra"), 1U);
  EXPECT_EQ(copied, original);
  EXPECT_EQ(stage.result(), resultOf("moved"));
}

TEST_F(MoveFailureScenario, AnInstalledCopyThatTheTrashRefusesStays) {
  stage.install("4999");
  layFile(trashPath);
  const auto installed = stage.tree(installedPath);
  stage.move();
  EXPECT_EQ(stage.result(), resultOf("not_writable"));
  EXPECT_EQ(stage.tree(installedPath), installed);
  EXPECT_EQ(stage.tree(downloadedPath), original);
  EXPECT_EQ(stage.front(), "none");
}

TEST_F(MoveFailureScenario, AnOldCopyThatTheTrashRefusesStaysAndTheMoveIsMade) {
  fs::create_directory(stage.root().host(trashPath));
  ASSERT_EQ(::chmod(stage.root().host(trashPath).c_str(), 0500), 0);
  stage.move();
  expectMoved();
  EXPECT_EQ(stage.result(), resultOf("moved"));
  EXPECT_EQ(stage.tree(downloadedPath), original);
}

TEST_F(MoveFailureScenario, AResultFolderThatCannotBeMadeLeavesNoResult) {
  layFile("/Users/tamo/Library/Containers");
  stage.move();
  expectMoved();
  EXPECT_EQ(stage.result(), "none");
}

TEST_F(MoveFailureScenario, AResultFolderThatMayNotBeWrittenKeepsItsOldResult) {
  fs::create_directories(stage.root().host(resultFolder));
  std::ofstream(stage.root().host(resultFolder + "/move-to-applications.json")) << "old";
  ASSERT_EQ(::chmod(stage.root().host(resultFolder).c_str(), 0500), 0);
  stage.move();
  expectMoved();
  EXPECT_EQ(stage.result(), "old");
  ::chmod(stage.root().host(resultFolder).c_str(), 0700);
}

TEST_F(MoveFailureScenario, EachMoveReplacesTheResultOfTheOneBefore) {
  stage.root().set("tool-ditto", "* fail 1");
  stage.move();
  EXPECT_EQ(stage.result(), resultOf("copy_failed"));
  stage.root().set("tool-ditto", std::nullopt);
  stage.move();
  EXPECT_EQ(stage.result(), resultOf("moved"));
}

TEST_F(MoveFailureScenario, AnOpeningThatFailsLeavesNoTrace) {
  stage.root().set("next-open-error", "NSCocoaErrorDomain\t256\tThe application could not be opened.");
  EXPECT_EQ(stage.move().status, 0);
  EXPECT_EQ(stage.stage().lines(), Texts{moveLine("moved")});
  EXPECT_EQ(stage.result(), resultOf("moved"));
  EXPECT_EQ(stage.front(), "none");
}

TEST_F(MoveFailureScenario, AnInstalledCopyThatCannotBeStartedIsStillOpened) {
  stage.install("5000");
  remove(installedPath + "/Contents/MacOS/Tamo");
  EXPECT_EQ(stage.move().status, 0);
  EXPECT_EQ(stage.result(), resultOf("opened"));
  EXPECT_EQ(stage.front(), "none");
}

}  // namespace
}  // namespace tamo::scenario

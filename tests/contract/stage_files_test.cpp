#include "platform/stage/stage_files.hpp"

#include <filesystem>
#include <gtest/gtest.h>

#include "contract/temporary_stage.hpp"

namespace tamo::stage {
namespace {

namespace fs = std::filesystem;

class StageFilesTest : public ::testing::Test {
 protected:
  contract::TemporaryStage stage;
  StageFiles files{stage.root()};
};

TEST_F(StageFilesTest, TheHostsOwnFilesAreNotThere) {
  EXPECT_FALSE(files.exists("/etc/passwd"));
  EXPECT_EQ(files.readWhole("/proc/self/stat"), std::nullopt);
  EXPECT_EQ(files.openForWriting("/dev/null"), nullptr);
}

TEST_F(StageFilesTest, AnAbsoluteLinkIsFollowedFromTheStagesRoot) {
  stage.file("/Users/tamo/file", "of the stage");
  stage.link("/link", "/Users/tamo/file");
  stage.link("/home", "/Users/tamo");
  EXPECT_EQ(files.readWhole("/link"), "of the stage");
  EXPECT_EQ(files.resolvedPath("/link"), "/Users/tamo/file");
  EXPECT_TRUE(files.writeAtomically("/home/new", "x"));
  EXPECT_TRUE(files.createDirectories("/home/a/b"));
  EXPECT_TRUE(fs::is_directory(stage.root().host("/Users/tamo/a/b")));
  EXPECT_TRUE(files.remove("/home/new"));
}

TEST_F(StageFilesTest, NoDirectoryIsMadeThroughALinkThatLeavesTheStage) {
  const contract::TemporaryStage elsewhere;
  stage.link("/out", elsewhere.root().directory());
  EXPECT_FALSE(files.createDirectories("/out/made"));
  EXPECT_FALSE(files.writeAtomically("/out/file", "x"));
  EXPECT_FALSE(fs::exists(elsewhere.root().host("/made")));
  EXPECT_FALSE(fs::exists(elsewhere.root().host("/file")));
}

TEST_F(StageFilesTest, TheRootItselfIsNeverRemoved) {
  EXPECT_FALSE(files.remove("/"));
  EXPECT_FALSE(files.remove("/Users/.."));
  EXPECT_TRUE(files.exists("/Users/tamo"));
}

TEST_F(StageFilesTest, OfAVanishedStageNothingCanBeMade) {
  fs::remove_all(stage.root().directory());
  EXPECT_FALSE(files.exists("/"));
  EXPECT_FALSE(files.createDirectories("/a/b"));
  EXPECT_FALSE(files.writeAtomically("/file", ""));
}

TEST_F(StageFilesTest, PrivateIsDroppedOnlyWhereTheShorterPathIsTheSameItem) {
  stage.folder("/private/tmp/item");
  stage.folder("/private/etc");
  stage.folder("/etc");
  EXPECT_EQ(files.resolvedPath("/tmp/item"), "/tmp/item");
  EXPECT_EQ(files.resolvedPath("/private/tmp/item"), "/tmp/item");
  EXPECT_EQ(files.resolvedPath("/private/etc"), "/private/etc");
  EXPECT_EQ(files.resolvedPath("/private/tmp/missing"), "/private/tmp/missing");
}

TEST_F(StageFilesTest, ASystemFolderThatWasLinkedAwayKeepsItsPrivate) {
  stage.folder("/private/Applications/Tamo.app");
  stage.folder("/private/Application");
  stage.link("/Applications", "private/Applications");
  stage.link("/Application", "private/Application");
  EXPECT_EQ(files.resolvedPath("/Applications/Tamo.app"), "/private/Applications/Tamo.app");
  EXPECT_EQ(files.resolvedPath("/Applications"), "/private/Applications");
  EXPECT_EQ(files.resolvedPath("/Application"), "/Application");
}

TEST_F(StageFilesTest, LetterCaseCounts) {
  stage.folder("/Applications/Tamo.app");
  EXPECT_FALSE(files.exists("/applications/tamo.app"));
}

TEST_F(StageFilesTest, TheTemporaryDirectoryIsASetting) {
  EXPECT_EQ(files.temporaryDirectory(), "/private/var/folders/st/tamo/T/");
  stage.root().set("temporary-directory", "/tmp");
  EXPECT_EQ(files.temporaryDirectory(), "/tmp/");
  stage.root().set("temporary-directory", "none");
  EXPECT_EQ(files.temporaryDirectory(), std::nullopt);
}

}  // namespace
}  // namespace tamo::stage

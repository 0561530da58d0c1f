#include "platform/stage/stage_root.hpp"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

#include "contract/temporary_stage.hpp"

namespace tamo::stage {
namespace {

namespace fs = std::filesystem;

class StageRootTest : public ::testing::Test {
 protected:
  [[nodiscard]] std::string below(const std::string& path) const { return root.directory() + path; }

  contract::TemporaryStage stage;
  const StageRoot& root = stage.root();
};

TEST_F(StageRootTest, TheDirectoryIsCanonical) {
  fs::create_directory_symlink(root.directory(), root.host("/again"));
  EXPECT_EQ(StageRoot(root.host("/again/bin/..")).directory(), root.directory());
}

TEST_F(StageRootTest, PathsAreMappedAsText) {
  const std::string& top = root.directory();
  EXPECT_EQ(root.host("/"), top);
  EXPECT_EQ(root.host(""), top);
  EXPECT_EQ(root.host("/a//missing/"), top + "/a/missing");
  EXPECT_EQ(root.host("/../../etc/passwd"), top + "/etc/passwd");
  EXPECT_EQ(root.onStage(top), "/");
  EXPECT_EQ(root.onStage(top + "/a/./b"), "/a/b");
  EXPECT_EQ(root.onStage(top + "/../etc"), std::nullopt);
  EXPECT_EQ(root.onStage(top + "x/a"), std::nullopt);
  EXPECT_EQ(root.onStage("/"), std::nullopt);
}

TEST_F(StageRootTest, LinksOfEveryKindStayOnTheStage) {
  stage.file("/Users/tamo/file", "");
  stage.link("/relative", "Users/tamo");
  stage.link("/absolute", "/Users/tamo/file");
  stage.link("/climbing", "../../../Users");
  EXPECT_EQ(root.existing("/relative/file"), below("/Users/tamo/file"));
  EXPECT_EQ(root.existing("/absolute"), below("/Users/tamo/file"));
  EXPECT_EQ(root.existing("/climbing/tamo"), below("/Users/tamo"));
  EXPECT_EQ(root.existing("/../.."), root.directory());
  EXPECT_EQ(root.existing("/"), root.directory());
}

TEST_F(StageRootTest, ALinkToAFileOfTheHostLeadsToNothing) {
  stage.link("/out", "/proc/self/stat");
  EXPECT_TRUE(fs::exists(root.host("/out")));
  EXPECT_EQ(root.existing("/out"), std::nullopt);
  EXPECT_EQ(root.existing("/missing"), std::nullopt);
  EXPECT_EQ(root.existing(""), std::nullopt);
}

TEST_F(StageRootTest, ALoopLeadsToNothing) {
  stage.link("/loop", "loop");
  EXPECT_EQ(root.existing("/loop"), std::nullopt);
}

TEST_F(StageRootTest, AnEntryIsTheLastComponentItself) {
  stage.link("/home", "/Users/tamo");
  stage.link("/Users/tamo/dangling", "/nowhere");
  EXPECT_EQ(root.entry("/home/dangling"), below("/Users/tamo/dangling"));
  EXPECT_EQ(root.entry("/home/new/"), below("/Users/tamo/new"));
  EXPECT_EQ(root.entry("/home"), below("/home"));
  EXPECT_EQ(root.entry("new"), below("/new"));
}

TEST_F(StageRootTest, AnEntryNeedsAFolderAndAName) {
  stage.file("/file", "");
  for (const auto* path : {"", "/", "/missing/new", "/file/new", "/Users/.", "/Users/.."})
    EXPECT_EQ(root.entry(path), std::nullopt) << path;
}

TEST_F(StageRootTest, ASettingIsReadWithoutItsLineBreak) {
  stage.file("/.stage/settings/plain", "value");
  stage.file("/.stage/settings/lines", "one\ntwo\n\n");
  EXPECT_EQ(root.setting("plain"), "value");
  EXPECT_EQ(root.setting("lines"), "one\ntwo\n");
  EXPECT_EQ(root.setting("missing"), std::nullopt);
  EXPECT_EQ(root.setting("missing", "otherwise"), "otherwise");
}

TEST_F(StageRootTest, ASettingIsSetAndCleared) {
  fs::remove_all(root.control("settings"));
  root.set("core", "term=ignore");
  EXPECT_EQ(root.setting("core"), "term=ignore");
  root.set("core", "");
  EXPECT_EQ(root.setting("core"), "");
  root.set("core", std::nullopt);
  root.set("core", std::nullopt);
  EXPECT_EQ(root.setting("core"), std::nullopt);
}

TEST_F(StageRootTest, TheUserComesFromTheSettings) {
  EXPECT_EQ(root.userID(), 501U);
  EXPECT_EQ(root.home(), "/Users/tamo");
  root.set("user-id", "502");
  root.set("home", "/Users/other");
  EXPECT_EQ(root.userID(), 502U);
  EXPECT_EQ(root.home(), "/Users/other");
  root.set("user-id", "me");
  EXPECT_DEATH(static_cast<void>(root.userID()), "fatal: the setting user-id is no user id");
  root.set("user-id", "-5");
  EXPECT_DEATH(static_cast<void>(root.userID()), "fatal: the setting user-id is no user id");
}

TEST_F(StageRootTest, ASettingThatCannotBeKeptIsFatal) {
  stage.folder("/.stage/settings/core/folder");
  EXPECT_DEATH(root.set("core", "stubborn"), "fatal: the setting core cannot be written");
  fs::remove_all(root.control("settings"));
  stage.file("/.stage/settings", "no folder");
  EXPECT_DEATH(root.set("core", "stubborn"), "fatal: the setting core cannot be written");
}

TEST_F(StageRootTest, WithoutAStageNothingStarts) {
  ::unsetenv("TAMO_STAGE");
  EXPECT_DEATH(StageRoot::fromEnvironment(), "fatal: no stage: TAMO_STAGE is not set");
  ::setenv("TAMO_STAGE", "", 1);
  EXPECT_DEATH(StageRoot::fromEnvironment(), "fatal: no stage: TAMO_STAGE is not set");
  EXPECT_DEATH(StageRoot(root.host("/missing")), "fatal: no stage at ");
  EXPECT_DEATH(StageRoot(root.host("/bin/sh")), "fatal: the stage at .* is no directory");
}

}  // namespace
}  // namespace tamo::stage

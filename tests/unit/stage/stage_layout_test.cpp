#include "stage/control/stage_layout.hpp"

#include <gtest/gtest.h>

#include "platform/stage/launchd_wire.hpp"
#include "stage/common/stage_census.hpp"
#include "stage/common/stage_error.hpp"
#include "temporary_stage.hpp"

namespace tamo::stage {
namespace {

class StageLayoutTest : public ::testing::Test {
 protected:
  ~StageLayoutTest() override {
    if (std::filesystem::exists(directory + "/.stage/laid")) strikeStage(directory);
  }

  TemporaryStage around;
  const std::string directory = around.path + "/stage with a blank";
  const Laying bare{.directory = directory, .programs = TAMO_BINARY_DIR "/bin", .bare = true};
};

TEST_F(StageLayoutTest, ALaidStageHasALaunchdThatAnswers) {
  const auto root = layStage(bare);
  const auto answer = askLaunchd(root, {"print", "gui/501"});
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->status, 0);
  EXPECT_EQ(processesOfStage(root.directory()).size(), 1U);
}

TEST_F(StageLayoutTest, AStruckStageLeavesNothing) {
  const auto root = layStage(bare);
  strikeStage(directory);
  EXPECT_TRUE(processesOfStage(root.directory()).empty());
  EXPECT_FALSE(std::filesystem::exists(directory));
}

TEST_F(StageLayoutTest, TheFoldersOfAMacAreThere) {
  const auto root = layStage(bare);
  for (const auto* path :
       {"/Applications", "/bin/launchctl", "/Users/tamo", "/tmp", "/var/folders/st/tamo/T"})
    EXPECT_TRUE(root.existing(path)) << path;
  const auto mode = std::filesystem::status(*root.existing("/var/folders/st/tamo/T")).permissions();
  EXPECT_EQ(mode, std::filesystem::perms::owner_all);
}

TEST_F(StageLayoutTest, StartingLaunchdWhereOneRunsChangesNothing) {
  const auto root = layStage(bare);
  const auto before = processesOfStage(root.directory()).at(0).pid;
  startLaunchd(root);
  ASSERT_EQ(processesOfStage(root.directory()).size(), 1U);
  EXPECT_EQ(processesOfStage(root.directory())[0].pid, before);
}

TEST_F(StageLayoutTest, ADirectoryWithSomethingInItIsNotTaken) {
  around.write("/stage with a blank/mine.txt", "mine");
  EXPECT_THROW(static_cast<void>(layStage(bare)), StageError);
  EXPECT_EQ(around.read("/stage with a blank/mine.txt"), "mine");
  EXPECT_FALSE(std::filesystem::exists(directory + "/bin"));
}

TEST_F(StageLayoutTest, ADirectoryThatIsNoStageIsNotStruck) {
  around.write("/stage with a blank/mine.txt", "mine");
  EXPECT_THROW(strikeStage(directory), StageError);
  EXPECT_THROW(strikeStage(directory + "/nowhere"), StageError);
  EXPECT_EQ(around.read("/stage with a blank/mine.txt"), "mine");
}

}  // namespace
}  // namespace tamo::stage

#include "platform/stage/stage_bundles.hpp"

#include <filesystem>
#include <gtest/gtest.h>

#include "contract/temporary_stage.hpp"

namespace tamo::stage {
namespace {

constexpr auto companion = "/Applications/Tamo.app/Contents/Library/LoginItems/Tamo Core.app";

class StageBundlesTest : public ::testing::Test {
 protected:
  [[nodiscard]] StageBundles launchedAs(const std::string& stagePath) const {
    return StageBundles(stage.root(), stage.root().directory() + stagePath);
  }

  contract::TemporaryStage stage;
};

TEST(BundleOfTest, TheBundleStandsBeforeItsExecutable) {
  EXPECT_EQ(bundleOf("/Applications/A B.app/Contents/MacOS/A B"), "/Applications/A B.app");
  EXPECT_EQ(bundleOf("/A.app/Contents/Resources/Contents/MacOS/a"), "/A.app/Contents/Resources");
}

TEST(BundleOfTest, OutsideABundleItIsTheFolder) {
  EXPECT_EQ(bundleOf("/usr/bin/tool"), "/usr/bin");
  EXPECT_EQ(bundleOf("/tool"), "/");
  EXPECT_EQ(bundleOf("/Contents/MacOS/tool"), "/Contents/MacOS");
  EXPECT_EQ(bundleOf("/A.app/Contents/MacOS/deeper/tool"), "/A.app/Contents/MacOS/deeper");
  EXPECT_EQ(bundleOf("/A.app/XContents/MacOS/tool"), "/A.app/XContents/MacOS");
}

TEST(ExecutableAsLaunchedTest, ItIsAbsoluteAndThisProgram) {
  const auto path = executableAsLaunched();
  EXPECT_TRUE(path.starts_with('/')) << path;
  EXPECT_TRUE(std::filesystem::equivalent(path, "/proc/self/exe")) << path;
}

TEST_F(StageBundlesTest, TheMainBundleIsAStagePath) {
  EXPECT_EQ(launchedAs(std::string(companion) + "/Contents/MacOS/Tamo Core").mainBundlePath(), companion);
}

TEST_F(StageBundlesTest, TheLinkOfTheLaunchIsKept) {
  stage.folder(std::string(companion) + "/Contents/MacOS");
  stage.file(std::string(companion) + "/Contents/MacOS/Tamo Core", "a program");
  stage.link("/Users/tamo/Desktop/Tamo.app", "../../../Applications/Tamo.app");
  const std::string inside = "/Users/tamo/Desktop/Tamo.app/Contents/Library/LoginItems/Tamo Core.app";
  EXPECT_EQ(launchedAs(inside + "/Contents/MacOS/Tamo Core").mainBundlePath(), inside);
}

TEST_F(StageBundlesTest, AnExecutableOffTheStageIsFatal) {
  EXPECT_DEATH(StageBundles(stage.root(), "/bin/sh"), "fatal: /bin/sh does not lie below the stage");
}

TEST_F(StageBundlesTest, TheOriginalOfACopyIsLookedUpAfresh) {
  const auto bundles = launchedAs("/tool");
  EXPECT_EQ(bundles.originalLocation("/a/Tamo.app"), std::nullopt);
  stage.file("/.stage/translocated", "/a/Tamo.app\t/Users/tamo/Downloads/Tamo.app\n/b/B.app\t/c d\n");
  EXPECT_EQ(bundles.originalLocation("/a/Tamo.app"), "/Users/tamo/Downloads/Tamo.app");
  EXPECT_EQ(bundles.originalLocation("/b/B.app"), "/c d");
  EXPECT_EQ(bundles.originalLocation("/a/Tamo"), std::nullopt);
  EXPECT_EQ(bundles.originalLocation(""), std::nullopt);
}

}  // namespace
}  // namespace tamo::stage

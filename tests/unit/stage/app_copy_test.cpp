#include "stage/control/app_copy.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include "stage/common/stage_error.hpp"
#include "stage/launchd/job_file.hpp"
#include "temporary_stage.hpp"
#include "values/property_list.hpp"

namespace tamo::stage {
namespace {

constexpr auto companionPath = "/Applications/Tamo.app/Contents/Library/LoginItems/Tamo Core.app";

class AppCopyTest : public ::testing::Test {
 protected:
  AppCopyTest() {
    for (const auto* name : {"tamo-core", "tamo-core-receipts", "stage-app", "stage-core"})
      stage.write(std::string("/programs/") + name, name);
  }

  void place(const AppCopy& copy) { placeCopy(stage.root, stage.path + "/programs", copy); }

  std::string infoText(const std::string& bundle, const std::string& key) {
    const auto list = values::readPropertyList(stage.read(bundle + "/Contents/Info.plist"));
    const auto* entry = list ? list->entry(key) : nullptr;
    return entry != nullptr && entry->text() != nullptr ? *entry->text() : "(none)";
  }

  std::expected<JobDefinition, JobFileFault> agent() {
    return jobDefinitionAt(stage.root, std::string(companionPath) +
                                           "/Contents/Library/LaunchAgents/studio.pell.tamo.core.plist");
  }

  TemporaryStage stage;
};

TEST_F(AppCopyTest, TheInstalledCopyIsAWholeBundle) {
  place({});
  EXPECT_EQ(infoText("/Applications/Tamo.app", "CFBundleIdentifier"), "studio.pell.Tamo");
  EXPECT_EQ(infoText("/Applications/Tamo.app", "CFBundleVersion"), "4211");
  EXPECT_EQ(infoText(companionPath, "CFBundleIdentifier"), "studio.pell.Tamo.Core");
  EXPECT_EQ(stage.read("/Applications/Tamo.app/Contents/MacOS/Tamo"), "stage-app");
  EXPECT_EQ(stage.read(companionProgram("/Applications/Tamo.app")), "tamo-core");
  EXPECT_EQ(stage.read(std::string(companionPath) + "/Contents/MacOS/tamo-core-agent"), "stage-core");
}

TEST_F(AppCopyTest, TheBundledAgentIsAJobOfItsBundle) {
  place({});
  const auto definition = agent();
  ASSERT_TRUE(definition);
  EXPECT_EQ(definition->label, "studio.pell.tamo.core");
  EXPECT_EQ(definition->program, std::string(companionPath) + "/Contents/MacOS/tamo-core-agent");
  EXPECT_EQ(definition->arguments, std::vector<std::string>{definition->program});
  EXPECT_EQ(definition->exitTimeout, std::chrono::seconds(20));
  EXPECT_TRUE(definition->runAtLoad && definition->keepAlive);
}

TEST_F(AppCopyTest, ACopyIsWhatItIsAskedToBe) {
  place({.where = "downloaded", .bundleID = "other.id", .build = "1.2", .companion = Companion::Receipts});
  const std::string copy = "/Users/tamo/Downloads/Tamo.app";
  EXPECT_EQ(infoText(copy, "CFBundleIdentifier"), "other.id");
  EXPECT_EQ(infoText(copy, "CFBundleVersion"), "1.2");
  EXPECT_EQ(stage.read(companionProgram(copy)), "tamo-core-receipts");
}

TEST_F(AppCopyTest, ANewCopyReplacesTheOldOneWhole) {
  place({});
  stage.write("/Applications/Tamo.app/left", "over");
  place({.build = "5000"});
  EXPECT_FALSE(stage.root.existing("/Applications/Tamo.app/left"));
  EXPECT_EQ(infoText("/Applications/Tamo.app", "CFBundleVersion"), "5000");
}

TEST_F(AppCopyTest, TheLinkLeadsToTheInstalledCopyInsideTheStage) {
  place({});
  place({.where = "linked"});
  EXPECT_EQ(std::filesystem::read_symlink(stage.path + "/Users/tamo/Desktop/Tamo.app"),
            "../../../Applications/Tamo.app");
  EXPECT_EQ(stage.root.existing("/Users/tamo/Desktop/Tamo.app"), stage.root.host("/Applications/Tamo.app"));
}

TEST_F(AppCopyTest, AMissingProgramIsFoundOutBeforeAnythingChanges) {
  place({});
  EXPECT_THROW(place({.build = "6000", .companion = Companion::Proof}), StageError);
  EXPECT_EQ(infoText("/Applications/Tamo.app", "CFBundleVersion"), "4211");
}

TEST_F(AppCopyTest, ThePlacesHaveTheirNames) {
  EXPECT_EQ(copyPath(stage.root, "staged"), "/Users/tamo/Library/Application Support/Tamo/staged/Tamo.app");
  EXPECT_EQ(copyPath(stage.root, "/Volumes//X/../T.app/"), "/Volumes/T.app");
  EXPECT_THROW(static_cast<void>(copyPath(stage.root, "somewhere")), StageError);
  EXPECT_THROW(static_cast<void>(copyPath(stage.root, "/..")), StageError);
}

TEST_F(AppCopyTest, TheAgentsListIsRewrittenInEitherForm) {
  place({});
  for (const bool binary : {false, true}) {
    writeAgentDefinition(stage.root, "/Applications/Tamo.app",
                         {.exitTimeout = std::nullopt, .arguments = {"--x", "y z"}, .binary = binary});
    const auto definition = agent();
    ASSERT_TRUE(definition);
    EXPECT_EQ(definition->exitTimeout, std::chrono::seconds(5));
    EXPECT_EQ(definition->arguments, (std::vector<std::string>{definition->program, "--x", "y z"}));
  }
}

TEST_F(AppCopyTest, WithoutACopyThereIsNoListToRewrite) {
  EXPECT_THROW(writeAgentDefinition(stage.root, "/Applications/Tamo.app", {}), StageError);
}

TEST_F(AppCopyTest, EveryFileOfAQuarantinedCopyCarriesTheMark) {
  place({.where = "downloaded", .quarantined = true});
  for (const auto* file : {"/Contents/Info.plist", "/Contents/MacOS/Tamo"}) {
    const auto path = stage.path + "/Users/tamo/Downloads/Tamo.app" + file;
    EXPECT_GT(::getxattr(path.c_str(), "user.com.apple.quarantine", nullptr, 0), 0) << file;
  }
}

TEST_F(AppCopyTest, ATranslocatedCopyIsWholeAndItsOriginalMayBeKnown) {
  place({.where = "downloaded", .build = "7"});
  const std::string original = "/Users/tamo/Downloads/Tamo.app";
  const auto path = translocateCopy(stage.root, original, Original::Known);
  EXPECT_NE(path.find("/AppTranslocation/"), std::string::npos);
  EXPECT_EQ(copyPath(stage.root, "translocated"), path);
  EXPECT_EQ(infoText(path, "CFBundleVersion"), "7");
  EXPECT_EQ(stage.read("/.stage/translocated"), path + "\t" + original + "\n");
  EXPECT_EQ(translocateCopy(stage.root, original, Original::Unknown), path);
  EXPECT_EQ(stage.read("/.stage/translocated"), "");
}

}  // namespace
}  // namespace tamo::stage

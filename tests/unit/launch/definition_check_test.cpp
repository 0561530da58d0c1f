#include "launch/definition_check.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "unit/launch/launch_rig.hpp"

namespace tamo {
namespace {

using ::testing::ElementsAre;

const std::string loadedTwo = printOf("\targuments = {\n\t\t/a/core\n\t\t--serve\n\t}\n");
const std::string loadedTwoAnd5 =
    printOf("\targuments = {\n\t\t/a/core\n\t\t--serve\n\t}\n\texit timeout = 5\n");

const std::string twoWords =
    "<key>ProgramArguments</key><array><string>/a/core</string><string>--serve</string></array>";
const std::string bundledTwo = plistOf(twoWords);
const std::string bundledTwoAnd5 = plistOf(twoWords + "<key>ExitTimeOut</key><integer>5</integer>");
const std::string bundledOneAnd9 = plistOf(
    "<key>ProgramArguments</key><array><string>/a/core</string></array>"
    "<key>ExitTimeOut</key><integer>9</integer>");

class DefinitionCheckTest : public ::testing::Test {
 protected:
  void bundle(const std::string& bytes) { rig.files.contents[plist] = bytes; }
  bool changed() { return check.definitionChanged(); }
  /// The one line that was logged.
  std::string logged() {
    const auto lines = rig.ledger.textsOf({"log: "});
    return lines.size() == 1 ? lines.front() : std::to_string(lines.size()) + " lines";
  }

  LaunchRig rig;
  std::string plist = rig.bundles.mainBundle + "/Contents/Library/LaunchAgents/studio.pell.tamo.core.plist";
  std::unique_ptr<platform::Logger> log = rig.logSystem.logger("studio.pell.Tamo.Core", "lifecycle");
  DefinitionCheck check{{.files = rig.files,
                         .bundles = rig.bundles,
                         .launchctl = rig.launchctl,
                         .log = *log,
                         .label = LaunchRig::label}};
};

TEST_F(DefinitionCheckTest, TheSameDefinitionIsNoChange) {
  bundle(bundledTwoAnd5);
  rig.printTextOnce(loadedTwoAnd5);
  EXPECT_FALSE(changed());
  EXPECT_EQ(logged(),
            "log: default definition: loaded /a/core --serve exit 5 · bundled /a/core --serve exit 5 "
            "· changed false");
}

TEST_F(DefinitionCheckTest, OtherArgumentsAreAChange) {
  bundle(bundledOneAnd9);
  rig.printTextOnce(loadedTwo);
  EXPECT_TRUE(changed());
  EXPECT_EQ(logged(),
            "log: default definition: loaded /a/core --serve exit - · bundled /a/core exit 9 · changed true");
}

TEST_F(DefinitionCheckTest, ATimeoutBehindALaunchConstraintIsCompared) {
  bundle(bundledTwoAnd5);
  rig.printTextOnce(
      printOf("\targuments = {\n\t\t/a/core\n\t\t--serve\n\t}\n"
              "\tLWCR = {\n\t\t\"reqs\" => {\n\t\t}\n\t}\n\texit timeout = 7\n"));
  EXPECT_TRUE(changed());
  EXPECT_EQ(logged(),
            "log: default definition: loaded /a/core --serve exit 7 · bundled /a/core --serve exit 5 "
            "· changed true");
}

TEST_F(DefinitionCheckTest, ATimeoutThatOneSideLacksIsNoChange) {
  bundle(bundledTwo);
  rig.printTextOnce(loadedTwoAnd5);
  EXPECT_FALSE(changed());
  EXPECT_EQ(logged(),
            "log: default definition: loaded /a/core --serve exit 5 · bundled /a/core --serve exit - "
            "· changed false");
}

TEST_F(DefinitionCheckTest, ABundledListThatCannotBeReadIsUnknown) {
  rig.printTextOnce(loadedTwo);
  EXPECT_FALSE(changed());
  EXPECT_EQ(
      logged(),
      "log: default definition: loaded /a/core --serve exit - · bundled unknown exit - · changed false");
}

TEST_F(DefinitionCheckTest, ABundledListWithoutArgumentsIsUnknown) {
  bundle(plistOf("<key>ProgramArguments</key><array/><key>ExitTimeOut</key><integer>5</integer>"));
  rig.printTextOnce(loadedTwo);
  EXPECT_FALSE(changed());
  EXPECT_EQ(
      logged(),
      "log: default definition: loaded /a/core --serve exit - · bundled unknown exit - · changed false");
}

TEST_F(DefinitionCheckTest, APrintThatFailedIsUnknownWhateverItsText) {
  for (const int code : {113, 1, -1}) {
    rig.ledger.clear();
    bundle(bundledOneAnd9);
    rig.printOnce({.status = code, .output = loadedTwo});
    EXPECT_FALSE(changed());
    EXPECT_EQ(logged(),
              "log: default definition: loaded unknown exit - · bundled /a/core exit 9 · changed false");
  }
}

TEST_F(DefinitionCheckTest, APrintThatIsNoTextIsUnknown) {
  bundle(bundledOneAnd9);
  rig.printTextOnce(loadedTwo + "\xFF");
  EXPECT_FALSE(changed());
}

TEST_F(DefinitionCheckTest, ACaptureThatCannotBeSetUpIsUnknown) {
  bundle(bundledOneAnd9);
  rig.files.failsToWrite = true;
  EXPECT_FALSE(changed());
  EXPECT_EQ(logged(),
            "log: default definition: loaded unknown exit - · bundled /a/core exit 9 · changed false");
}

TEST_F(DefinitionCheckTest, NeitherSideKnownIsStillLogged) {
  rig.printOnce({.status = 113});
  EXPECT_FALSE(changed());
  EXPECT_EQ(logged(),
            "log: default definition: loaded unknown exit - · bundled unknown exit - · changed false");
}

TEST_F(DefinitionCheckTest, EmptyArgumentsShowAsSpaces) {
  bundle(bundledTwo);
  rig.printTextOnce(printOf("\targuments = {\n\n\t\ta\n\n\t}\n"));
  EXPECT_TRUE(changed());
  EXPECT_EQ(logged(),
            "log: default definition: loaded  a  exit - · bundled /a/core --serve exit - · changed true");
}

TEST_F(DefinitionCheckTest, TheListOfTheRunningBundleItselfIsRead) {
  rig.files.contents["/Applications/Tamo.app/Contents/Library/LaunchAgents/studio.pell.tamo.core.plist"] =
      bundledOneAnd9;
  bundle(bundledTwo);
  rig.printTextOnce(loadedTwo);
  EXPECT_FALSE(changed());
}

TEST_F(DefinitionCheckTest, TheBundleIsReadBeforeLaunchdIsAskedAndThenItIsLogged) {
  bundle(bundledTwo);
  rig.printTextOnce(loadedTwo);
  changed();
  EXPECT_THAT(rig.ledger.textsOf({"files: read " + plist, "tool: /bin/launchctl", "log: "}),
              ElementsAre("files: read " + plist, "tool: /bin/launchctl print " + LaunchRig::target,
                          ::testing::StartsWith("log: default definition: ")));
}

TEST_F(DefinitionCheckTest, EveryCallReadsTheBundleAfresh) {
  bundle(bundledTwo);
  rig.printTextOnce(loadedTwo);
  EXPECT_FALSE(changed());
  bundle(bundledOneAnd9);
  rig.printTextOnce(loadedTwo);
  EXPECT_TRUE(changed());
  rig.files.contents.clear();
  rig.printTextOnce(loadedTwo);
  EXPECT_FALSE(changed());
}

TEST_F(DefinitionCheckTest, EveryCallAsksLaunchdAfresh) {
  bundle(bundledTwo);
  rig.printTextOnce(printOf("\targuments = {\n\t\t/old/core\n\t}\n"));
  EXPECT_TRUE(changed());
  rig.printTextOnce(loadedTwo);
  EXPECT_FALSE(changed());
  rig.printOnce({.status = 113, .output = loadedTwo});
  rig.ledger.clear();
  EXPECT_FALSE(changed());
  EXPECT_EQ(
      logged(),
      "log: default definition: loaded unknown exit - · bundled /a/core --serve exit - · changed false");
}

TEST_F(DefinitionCheckTest, LaunchdIsAskedOnceAndNothingIsRepeatedOrChanged) {
  rig.files.contents["/tmp/of-the-user/other"] = "of somebody else";
  bundle(bundledTwo);
  rig.printTextOnce(loadedTwo);
  changed();
  EXPECT_EQ(rig.ledger.count("tool: /"), 1U);
  EXPECT_EQ(rig.ledger.count("files: read " + plist), 1U);
  EXPECT_EQ(rig.files.contents.size(), 2U);
  EXPECT_EQ(rig.now(), std::chrono::nanoseconds(0));
}

TEST_F(DefinitionCheckTest, TheListIsNamedAfterTheLabel) {
  DefinitionCheck other{{.files = rig.files,
                         .bundles = rig.bundles,
                         .launchctl = rig.launchctl,
                         .log = *log,
                         .label = "another.label"}};
  bundle(bundledTwo);
  rig.files.contents[rig.bundles.mainBundle + "/Contents/Library/LaunchAgents/another.label.plist"] =
      bundledOneAnd9;
  rig.printTextOnce(loadedTwo);
  EXPECT_TRUE(other.definitionChanged());
}

TEST_F(DefinitionCheckTest, AnotherTimeoutAloneIsAChange) {
  bundle(plistOf(twoWords + "<key>ExitTimeOut</key><integer>0</integer>"));
  rig.printTextOnce(loadedTwoAnd5);
  EXPECT_TRUE(changed());
  EXPECT_EQ(logged(),
            "log: default definition: loaded /a/core --serve exit 5 · bundled /a/core --serve exit 0 "
            "· changed true");
}

TEST_F(DefinitionCheckTest, TimeoutsAreLoggedInDecimalWhateverTheirSize) {
  bundle(plistOf(twoWords + "<key>ExitTimeOut</key><integer>9007199254740993</integer>"));
  rig.printTextOnce(printOf("\targuments = {\n\t\t/a/core\n\t\t--serve\n\t}\n\texit timeout = -5\n"));
  EXPECT_TRUE(changed());
  EXPECT_EQ(logged(),
            "log: default definition: loaded /a/core --serve exit -5 · bundled /a/core --serve exit "
            "9007199254740993 · changed true");
}

TEST_F(DefinitionCheckTest, ArgumentsAreLoggedWithNothingButSpacesBetweenThem) {
  bundle(bundledTwo);
  rig.printTextOnce(printOf("\targuments = {\n\t\t/a b/core\n\t\t\"c\", d\n\t\te\n\t}\n"));
  EXPECT_TRUE(changed());
  EXPECT_EQ(logged(),
            "log: default definition: loaded /a b/core \"c\", d e exit - · bundled /a/core --serve exit - "
            "· changed true");
}

TEST_F(DefinitionCheckTest, AnotherCompositionIsNoChange) {
  bundle(plistOf("<key>ProgramArguments</key><array><string>/Zo\u00EB</string></array>"));
  rig.printTextOnce(printOf("\targuments = {\n\t\t/Zoe\u0308\n\t}\n"));
  EXPECT_FALSE(changed());
}

TEST_F(DefinitionCheckTest, AGoodPrintWithoutArgumentsIsUnknown) {
  for (const auto& text :
       {std::string(), printOf("\texit timeout = 5\n"), std::string("Could not find it\n")}) {
    rig.ledger.clear();
    bundle(bundledOneAnd9);
    rig.printTextOnce(text);
    EXPECT_FALSE(changed());
    EXPECT_EQ(logged(),
              "log: default definition: loaded unknown exit - · bundled /a/core exit 9 · changed false");
  }
}

TEST_F(DefinitionCheckTest, APrintWhoseFileDoesNotOpenIsUnknown) {
  bundle(bundledOneAnd9);
  rig.files.failsToOpen = true;
  EXPECT_FALSE(changed());
  EXPECT_EQ(logged(),
            "log: default definition: loaded unknown exit - · bundled /a/core exit 9 · changed false");
}

}  // namespace
}  // namespace tamo

#include "move/move_to_applications.hpp"

#include <gtest/gtest.h>
#include <thread>
#include <utility>

#include "unit/move/move_rig.hpp"

namespace tamo {
namespace {

using Texts = std::vector<std::string>;

/// What a move does and says up to the result file, by its traces in the ledger.
class MoveToApplicationsTest : public ::testing::Test {
 protected:
  static constexpr auto app = "/Applications/Tamo.app";
  const std::string ditto = "tool: /usr/bin/ditto " + MoveRig::downloads + " " + app;
  const std::string xattr = std::string("tool: /usr/bin/xattr -dr com.apple.quarantine ") + app;
  const std::string removesInstalled = std::string("files: remove ") + app;
  const std::string trashesInstalled = std::string("user files: trash ") + app;
  const std::string trashesDownloads = "user files: trash " + MoveRig::downloads;
  const std::string asksForRights = "user files: writable /Applications";
  const std::string createsContainer = "files: create directories " + MoveRig::container;
  const std::string writesResult = "files: write " + MoveRig::resultFile;
  const std::string opens = std::string("workspace: open ") + app;

  static std::string says(const std::string& code) { return "log: default move-to-applications -> " + code; }
  /// The entry of the privileged copy without its long command.
  [[nodiscard]] Texts effects() const {
    auto texts = rig.effects();
    for (auto& text : texts) {
      if (text.starts_with("tool: /usr/bin/osascript")) text = "asks the administrator";
    }
    return texts;
  }
  /// A refusal is its line and nothing else; what is installed is not even looked at.
  void expectRefused() {
    EXPECT_TRUE(rig.move());
    EXPECT_EQ(effects(), Texts{"log: error move refused: this Tamo doesn't need moving"});
    EXPECT_EQ(rig.ledger.textsOf({"workspace: ", "queue: ", "bundles: ", "files: exists"}), Texts());
    EXPECT_EQ(rig.result(), "");
  }

  MoveRig rig;
};

TEST_F(MoveToApplicationsTest, WithNothingInstalledEveryStepComesInItsOrder) {
  rig.runs(MoveRig::downloads);
  rig.quitsAt(std::chrono::milliseconds(100));
  EXPECT_TRUE(rig.move());
  const std::string readsInfo = "files: read " + MoveRig::downloads + "/Contents/Info.plist";
  EXPECT_EQ(rig.ledger.texts(), (Texts{readsInfo, readsInfo, std::string("files: exists ") + app, readsInfo,
                                       ditto, "tool: read errors /usr/bin/ditto", "tool: wait /usr/bin/ditto",
                                       xattr, "tool: read errors /usr/bin/xattr", "tool: wait /usr/bin/xattr",
                                       trashesDownloads, says("moved"), createsContainer, writesResult,
                                       "workspace: list", "queue: after 250 ms", "workspace: list", opens}));
  EXPECT_EQ(rig.result(), R"({"ok":true,"code":"moved"})");
}

TEST_F(MoveToApplicationsTest, AnOlderInstalledCopyGoesToTheTrashBeforeTheCopy) {
  rig.place(app, "41");
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(effects(), (Texts{trashesInstalled, ditto, xattr, trashesDownloads, says("moved"),
                              createsContainer, writesResult, opens}));
  EXPECT_EQ(rig.userFiles.trashed, (Texts{app, MoveRig::downloads}));
  EXPECT_EQ(rig.result(), R"({"ok":true,"code":"moved"})");
}

TEST_F(MoveToApplicationsTest, AnInstalledCopyThatIsNotKnownToBeOlderIsOnlyOpened) {
  for (const std::string build : {"42", "43", "42.9", "none"}) {
    MoveRig kept;
    kept.place(app, build);
    EXPECT_TRUE(kept.move());
    EXPECT_EQ(kept.effects(), (Texts{says("opened"), createsContainer, writesResult, opens})) << build;
    EXPECT_EQ(kept.result(), R"({"ok":true,"code":"opened"})") << build;
  }
}

TEST_F(MoveToApplicationsTest, AnInstalledFolderWithoutAnInfoFileIsOnlyOpened) {
  rig.files.directories.insert(app);
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(rig.result(), R"({"ok":true,"code":"opened"})");
  EXPECT_TRUE(rig.userFiles.trashed.empty());
}

TEST_F(MoveToApplicationsTest, AFileInTheInstalledCopysPlaceIsOnlyOpened) {
  rig.files.contents[app] = "no bundle";
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(effects(), (Texts{says("opened"), createsContainer, writesResult, opens}));
}

TEST_F(MoveToApplicationsTest, AnOlderInstalledCopyIsReplacedWhateverItsIdentifier) {
  for (const auto* identifier : {"studio.pell.Tamo.dev", "com.example.other", ""}) {
    MoveRig replacing;
    replacing.place(app, "41", identifier);
    EXPECT_TRUE(replacing.move());
    EXPECT_EQ(replacing.userFiles.trashed, (Texts{app, MoveRig::downloads})) << identifier;
  }
}

TEST_F(MoveToApplicationsTest, ACopyWhoseOwnBuildIsUnknownReplacesNothing) {
  rig.place(MoveRig::downloads, "unknown");
  rig.place(app, "1");
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(effects(), (Texts{says("opened"), createsContainer, writesResult, opens}));
}

TEST_F(MoveToApplicationsTest, ACopyWhoseOwnBuildIsUnknownIsCopiedWhereNothingIs) {
  rig.place(MoveRig::downloads, "unknown");
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(rig.result(), R"({"ok":true,"code":"moved"})");
}

TEST_F(MoveToApplicationsTest, TheInstalledBuildIsNotReadWhereNothingIsInstalled) {
  rig.move();
  EXPECT_EQ(rig.ledger.count(std::string("files: read ") + app), 0U);
}

TEST_F(MoveToApplicationsTest, AnOlderCopyThatWillNotGoToTheTrashStopsTheMove) {
  rig.place(app, "41");
  rig.userFiles.untrashable.insert(app);
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(effects(), (Texts{trashesInstalled, says("not_writable"), createsContainer, writesResult}));
  EXPECT_EQ(rig.result(), R"({"ok":false,"code":"not_writable"})");
  EXPECT_TRUE(rig.files.exists(app));
}

TEST_F(MoveToApplicationsTest, AFailedCopyIsRecordedAndNothingIsTrashedOrOpened) {
  rig.dittoFails();
  rig.runs(MoveRig::downloads);
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(effects(), (Texts{ditto, removesInstalled, asksForRights, says("copy_failed"), createsContainer,
                              writesResult}));
  EXPECT_EQ(rig.result(), R"({"ok":false,"code":"copy_failed"})");
  EXPECT_EQ(rig.ledger.count("workspace: ") + rig.ledger.count("queue: "), 0U);
  EXPECT_FALSE(rig.files.exists(app));
}

TEST_F(MoveToApplicationsTest, AFailedReplaceLeavesTheOlderCopyInTheTrash) {
  rig.place(app, "41");
  rig.dittoFails();
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(effects(), (Texts{trashesInstalled, ditto, removesInstalled, asksForRights, says("copy_failed"),
                              createsContainer, writesResult}));
  EXPECT_EQ(rig.userFiles.trashed, Texts{app});
  EXPECT_FALSE(rig.files.exists(app));
}

TEST_F(MoveToApplicationsTest, TheAdministratorCopiesWhereTheUserMayNot) {
  rig.applicationsIsProtected();
  rig.administratorSays(0);
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(effects(), (Texts{ditto, removesInstalled, asksForRights, "asks the administrator",
                              trashesDownloads, says("moved"), createsContainer, writesResult, opens}));
  EXPECT_EQ(rig.result(), R"({"ok":true,"code":"moved"})");
}

TEST_F(MoveToApplicationsTest, APromptThatFailsIsRecordedAndNothingIsTrashedOrOpened) {
  for (const auto& [errors, code] : {std::pair("execution error: (-128)", "cancelled"),
                                     std::pair("execution error: (-60005)", "not_writable")}) {
    MoveRig turnedDown;
    turnedDown.applicationsIsProtected();
    turnedDown.administratorSays(1, errors);
    EXPECT_TRUE(turnedDown.move());
    EXPECT_EQ(turnedDown.effects().back(), writesResult) << code;
    EXPECT_EQ(turnedDown.ledger.count("log: "), turnedDown.ledger.count(says(code))) << code;
    EXPECT_EQ(turnedDown.result(), std::string(R"({"ok":false,"code":")") + code + "\"}");
    EXPECT_TRUE(turnedDown.userFiles.trashed.empty()) << code;
    EXPECT_FALSE(turnedDown.files.exists(app)) << code;
  }
}

TEST_F(MoveToApplicationsTest, AnOldCopyThatWillNotGoToTheTrashChangesNothing) {
  rig.userFiles.untrashable.insert(MoveRig::downloads);
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(effects(),
            (Texts{ditto, xattr, trashesDownloads, says("moved"), createsContainer, writesResult, opens}));
  EXPECT_EQ(rig.result(), R"({"ok":true,"code":"moved"})");
}

TEST_F(MoveToApplicationsTest, ATranslocatedCopyHasItsOriginalTrashed) {
  rig.runsFrom(MoveRig::translocated);
  rig.bundles.originals[MoveRig::translocated] = MoveRig::downloads;
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(rig.userFiles.trashed, Texts{MoveRig::downloads});
  EXPECT_EQ(rig.ledger.count("tool: /usr/bin/ditto " + MoveRig::translocated + " "), 1U);
  EXPECT_EQ(rig.result(), R"({"ok":true,"code":"moved"})");
}

TEST_F(MoveToApplicationsTest, ATranslocatedCopyWithoutAKnownOriginalLeavesEverything) {
  rig.runsFrom(MoveRig::translocated);
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(rig.ledger.count("bundles: original " + MoveRig::translocated), 1U);
  EXPECT_EQ(rig.ledger.count("user files: trash"), 0U);
  EXPECT_EQ(rig.result(), R"({"ok":true,"code":"moved"})");
}

TEST_F(MoveToApplicationsTest, AnOriginalThatIsTheDestinationIsNeverTrashed) {
  rig.runsFrom(MoveRig::translocated);
  rig.bundles.originals[MoveRig::translocated] = "/Applications/./Tamo.app/";
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(rig.ledger.count("user files: trash"), 0U);
  EXPECT_TRUE(rig.files.exists(app));
}

TEST_F(MoveToApplicationsTest, TheOriginalIsAskedForOnlyAfterACopy) {
  rig.runsFrom(MoveRig::translocated);
  rig.place(app, "42");
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(rig.ledger.count("bundles: "), 0U);
  EXPECT_EQ(rig.result(), R"({"ok":true,"code":"opened"})");
}

TEST_F(MoveToApplicationsTest, AResultThatCannotBeRecordedChangesNothing) {
  rig.files.failsToCreateDirectories = true;
  rig.files.failsToWrite = true;
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(effects(),
            (Texts{ditto, xattr, trashesDownloads, says("moved"), createsContainer, writesResult, opens}));
}

TEST_F(MoveToApplicationsTest, AFolderThatCannotBeCreatedDoesNotKeepTheResultFromBeingWritten) {
  rig.files.failsToCreateDirectories = true;
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(rig.result(), R"({"ok":true,"code":"moved"})");
}

TEST_F(MoveToApplicationsTest, TheResultOfTheMoveBeforeIsReplaced) {
  rig.files.contents[MoveRig::resultFile] = R"({"ok":true,"code":"moved"})";
  rig.dittoFails();
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(rig.result(), R"({"ok":false,"code":"copy_failed"})");
}

TEST_F(MoveToApplicationsTest, AUserWithoutAnEntryHasItsResultUnderTheEmptyHome) {
  rig.user.entry.reset();
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(rig.ledger.count("files: write /var/empty/Library/Containers/studio.pell.Tamo/Data/"), 1U);
}

TEST_F(MoveToApplicationsTest, CopiesThatAreWhereTheyBelongAreRefused) {
  rig.runsFrom(app);
  expectRefused();
}

TEST_F(MoveToApplicationsTest, TheStagedCopyIsRefused) {
  rig.runsFrom("/Users/u/Library/Application Support/Tamo/staged/Tamo.app");
  expectRefused();
}

TEST_F(MoveToApplicationsTest, ACopyWithAnotherIdentifierIsRefused) {
  rig.runsFrom(MoveRig::downloads, "studio.pell.Tamo.debug");
  expectRefused();
}

TEST_F(MoveToApplicationsTest, AFolderThatIsNoBundleIsRefused) {
  rig.bundles.mainBundle = "/Users/u/bin";
  expectRefused();
}

/// Two helpers deep, the application around both tells whether a move is needed, and the inner one is moved.
class MoveOfInnerCopyTest : public MoveToApplicationsTest {
 protected:
  MoveOfInnerCopyTest() { rig.bundles.mainBundle = inner + "/Contents/Library/LoginItems/Tamo Core.app"; }

  const std::string inner = MoveRig::downloads + "/Contents/Library/LoginItems/Inner.app";
};

TEST_F(MoveOfInnerCopyTest, WithoutAnIdentifierOfItsOwnItIsRefused) {
  expectRefused();
}

TEST_F(MoveOfInnerCopyTest, ItIsKnownByItsOwnIdentifier) {
  rig.place(inner, "42", "studio.pell.Inner");
  rig.workspace.running = {{"studio.pell.Inner", inner}};
  rig.quitsAt(std::chrono::milliseconds(200));
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(rig.ledger.count("files: write /Users/u/Library/Containers/studio.pell.Inner/Data/"), 1U);
  EXPECT_EQ(rig.openedAt(), std::chrono::milliseconds(250));
  EXPECT_EQ(rig.userFiles.trashed, Texts{inner});
}

TEST_F(MoveOfInnerCopyTest, AnIdentifierThatIsEmptyIsOneAllTheSame) {
  rig.place(inner, "42", "");
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(
      rig.ledger.count("files: write /Users/u/Library/Containers//Data/Library/Application Support/Tamo/"),
      1U);
  EXPECT_EQ(rig.userFiles.trashed, Texts{inner});
}

TEST_F(MoveToApplicationsTest, ReleasesAsTheyAreBuiltHaveBinaryInfoFilesAndMoveAllTheSame) {
  rig.files.contents[MoveRig::downloads + "/Contents/Info.plist"] = binaryInfo("studio.pell.Tamo", "42");
  rig.place(app, "1");
  rig.files.contents[std::string(app) + "/Contents/Info.plist"] = binaryInfo("studio.pell.Tamo", "41");
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(rig.userFiles.trashed, (Texts{app, MoveRig::downloads}));
  EXPECT_EQ(rig.result(), R"({"ok":true,"code":"moved"})");
}

TEST_F(MoveToApplicationsTest, TheStagedCopyOfAUserWithoutAnEntryIsThatOfTheEmptyHome) {
  rig.user.entry.reset();
  rig.runsFrom("/var/empty/Library/Application Support/Tamo/staged/Tamo.app");
  expectRefused();
}

TEST_F(MoveToApplicationsTest, TheStagedCopyOfAnotherUserMoves) {
  rig.user.entry = platform::PasswordEntry{"/Users/v"};
  rig.runsFrom("/Users/u/Library/Application Support/Tamo/staged/Tamo.app");
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(rig.ledger.count("files: write /Users/v/Library/Containers/studio.pell.Tamo/Data/"), 1U);
}

TEST_F(MoveToApplicationsTest, AnInstalledPathThatIsALinkIsOpenedWhereItLeads) {
  rig.runsFrom(app);
  rig.files.resolved[app] = "/Volumes/X/Tamo.app";
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(effects(), (Texts{says("opened"), createsContainer, writesResult, opens}));
}

TEST_F(MoveToApplicationsTest, EnteringOffTheMainThreadIsFatal) {
  EXPECT_DEATH(std::thread([this] {
                 auto task = rig.mover.moveToApplications();
                 task.start();
               }).join(),
               "fatal: the move to Applications entered off the main thread");
}

}  // namespace
}  // namespace tamo

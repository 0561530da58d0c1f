#include "guard/live_data_guard.hpp"

#include <gtest/gtest.h>
#include <vector>

#include "fakes/fake_files.hpp"
#include "fakes/fake_surroundings.hpp"

namespace tamo::LiveDataGuard {
namespace {

const std::string staged = "/Users/u/Library/Application Support/Tamo/staged/Tamo.app";
const std::string liveData = "/Users/u/Library/Application Support/Tamo";

/// A copy of user u that is reached without links.
AppCopy releaseCopyAt(const std::string& path) {
  return {.appPath = path, .resolvedPath = path, .bundleID = "studio.pell.Tamo", .home = "/Users/u"};
}

/// A path that leads where it says, without links.
ClampedPath plain(const std::string& path) {
  return {.path = path, .standardised = path, .viaParent = path};
}

/// Files that nobody is to ask.
class UnaskedFiles final : public platform::FileReader {
 public:
  bool exists(const std::string& path) const override { return asked(path).empty(); }
  std::optional<std::string> readWhole(const std::string& path) const override { return asked(path); }
  std::string resolvedPath(const std::string& path) const override { return asked(path); }

 private:
  static std::string asked(const std::string& path) {
    ADD_FAILURE() << "a question about " << path;
    return "";
  }
};

Access isolatedFrom(const std::string& home) {
  return {.live = false, .real = home};
}

TEST(ConstantsTest, TheIsolatedDataLieInTheIsolatedHome) {
  EXPECT_EQ(isolatedData, std::string(isolatedHome) + "/" + std::string(dataRel));
  EXPECT_EQ(stagedRel, std::string(dataRel) + "/staged/Tamo.app");
}

TEST(RealHomeTest, TheHomeIsTheOneOfTheUserDatabase) {
  fakes::FakeUser user;
  user.entry->home = "/Users/v";
  EXPECT_EQ(realHome(user), "/Users/v");
}

TEST(RealHomeTest, AnUnknownUserHasAnEmptyHome) {
  fakes::FakeUser user;
  user.entry = std::nullopt;
  EXPECT_EQ(realHome(user), "/var/empty");
}

TEST(RealHomeDeathTest, AnEntryWithoutAHomeStopsTheProcess) {
  fakes::FakeUser user;
  user.entry->home = std::nullopt;
  EXPECT_DEATH(static_cast<void>(realHome(user)), "fatal: the user database has an entry without a home");
}

TEST(StagedAppTest, TheStagedCopyLiesInTheLiveData) {
  EXPECT_EQ(stagedApp("/Users/u"), staged);
  EXPECT_EQ(stagedApp("/Users/./u/"), staged);
}

struct Outer {
  std::string_view path;
  std::string_view outer;
};

TEST(OuterAppTest, TheCutIsAtTheLastLoginItems) {
  const std::vector<Outer> table{
      {"/Applications/Tamo.app/Contents/Library/LoginItems/Core.app", "/Applications/Tamo.app"},
      {"/X/Tamo.app/Contents/Library/LoginItems/H.app/Contents/MacOS/tool", "/X/Tamo.app"},
      {"/A.app/Contents/Library/LoginItems/B.app/Contents/Library/LoginItems/C.app",
       "/A.app/Contents/Library/LoginItems/B.app"},
      {"/A.app/Contents/./Library//LoginItems/../LoginItems/B.app/", "/A.app"},
  };
  for (const auto& row : table)
    EXPECT_EQ(outerApp(row.path), row.outer) << row.path;
}

TEST(OuterAppTest, APathOutsideHelpersIsOnlyStandardised) {
  const std::vector<Outer> table{
      {"/Users/u/Downloads/Tamo.app", "/Users/u/Downloads/Tamo.app"},
      {"/Users/u/../u/Downloads/Tamo.app/", "/Users/u/Downloads/Tamo.app"},
      {"/Applications/Tamo.app/Contents/MacOS/Tamo", "/Applications/Tamo.app/Contents/MacOS/Tamo"},
      {"/A.app/Contents/Library/LoginItems/", "/A.app/Contents/Library/LoginItems"},
      {"/A.app/contents/library/loginitems/B.app", "/A.app/contents/library/loginitems/B.app"},
  };
  for (const auto& row : table)
    EXPECT_EQ(outerApp(row.path), row.outer) << row.path;
}

TEST(MayOpenLiveTest, TheInstalledCopyMay) {
  EXPECT_TRUE(mayOpenLive(releaseCopyAt("/Applications/Tamo.app")));
}

TEST(MayOpenLiveTest, BothPathsAreStandardisedBeforeTheyAreCompared) {
  auto copy = releaseCopyAt("/Applications/Tamo.app");
  copy.appPath = "/Applications/../Applications/Tamo.app/";
  EXPECT_TRUE(mayOpenLive(copy));
  copy.resolvedPath = "//Applications/./Tamo.app";
  EXPECT_TRUE(mayOpenLive(copy));
}

TEST(MayOpenLiveTest, TheStagedCopyOfThisHomeMay) {
  EXPECT_TRUE(mayOpenLive(releaseCopyAt(staged)));
}

TEST(MayOpenLiveTest, AnAccentInTheHomeCountsHoweverItIsComposed) {
  const std::string behindHome = "/Library/Application Support/Tamo/staged/Tamo.app";
  auto copy = releaseCopyAt("/Users/e\u0301" + behindHome);
  copy.home = "/Users/\u00E9";
  EXPECT_TRUE(mayOpenLive(copy));
  copy.resolvedPath = "/Users/\u00E9" + behindHome;
  EXPECT_TRUE(mayOpenLive(copy));
  copy.home = "/Users/e";
  EXPECT_FALSE(mayOpenLive(copy));
}

TEST(MayOpenLiveTest, TheStagedCopyOfAnotherHomeMayNot) {
  auto copy = releaseCopyAt(staged);
  copy.home = "/Users/v";
  EXPECT_FALSE(mayOpenLive(copy));
}

TEST(MayOpenLiveTest, AnyOtherPlaceMayNot) {
  for (const auto* path : {"/applications/tamo.app", "/Applications/tamo.app", "/Users/u/Downloads/Tamo.app",
                           "/Applications/Tamo.app/Contents", "/Applications/Tamo 2.app", "/",
                           "/Users/u/Library/Application Support/Tamo/Staged/Tamo.app"}) {
    EXPECT_FALSE(mayOpenLive(releaseCopyAt(path))) << path;
  }
}

TEST(MayOpenLiveTest, ACopyReachedThroughALinkMayNot) {
  auto copy = releaseCopyAt("/Applications/Tamo.app");
  copy.resolvedPath = "/Volumes/X/Tamo.app";
  EXPECT_FALSE(mayOpenLive(copy));
}

TEST(MayOpenLiveTest, ALinkToTheInstalledCopyMayNot) {
  auto copy = releaseCopyAt("/Users/u/Desktop/Tamo.app");
  copy.resolvedPath = "/Applications/Tamo.app";
  EXPECT_FALSE(mayOpenLive(copy));
}

TEST(MayOpenLiveTest, WithoutTheReleaseIdentifierNoPlaceHelps) {
  auto copy = releaseCopyAt("/Applications/Tamo.app");
  for (const auto* identifier : {"studio.pell.Tamo.Core", "studio.pell.tamo", "studio.pell.Tamo ", ""}) {
    copy.bundleID = identifier;
    EXPECT_FALSE(mayOpenLive(copy)) << identifier;
  }
  copy.bundleID = std::nullopt;
  EXPECT_FALSE(mayOpenLive(copy));
}

TEST(DataHomeTest, OnlyLiveDataAreInTheRealHome) {
  EXPECT_EQ(dataHome({.live = true, .real = "/Users/u"}), "/Users/u");
  EXPECT_EQ(dataHome(isolatedFrom("/Users/u")), "/private/tmp/studio.pell.Tamo-isolated");
  EXPECT_EQ(dataHome(isolatedFrom("")), "/private/tmp/studio.pell.Tamo-isolated");
}

std::string clampedPlainly(const std::string& path, const std::string& home = "/Users/u") {
  return clamp(plain(path), isolatedFrom(home));
}

TEST(ClampTest, APathInTheLiveDataIsSentToTheIsolatedData) {
  EXPECT_EQ(clampedPlainly(liveData + "/db.sqlite"),
            "/private/tmp/studio.pell.Tamo-isolated/Library/Application Support/Tamo/db.sqlite");
}

TEST(ClampTest, TheLiveDataDirectoryItselfBecomesTheIsolatedOne) {
  EXPECT_EQ(clampedPlainly(liveData),
            "/private/tmp/studio.pell.Tamo-isolated/Library/Application Support/Tamo");
}

TEST(ClampTest, LetterCaseDoesNotHideTheLiveDataAndIsKeptBelowThem) {
  EXPECT_EQ(clampedPlainly("/USERS/U/LIBRARY/APPLICATION SUPPORT/TAMO/DB.SQLITE"),
            std::string(isolatedData) + "/DB.SQLITE");
}

TEST(ClampTest, PathsBesideTheLiveDataStay) {
  for (const auto& path : {liveData + "PKG1", liveData + "PKG1/M2", liveData + ".app", std::string("/"),
                           std::string("/Users/u/Library/Application Support"),
                           std::string("/Users/v/Library/Application Support/Tamo/db.sqlite")}) {
    EXPECT_EQ(clampedPlainly(path), path);
  }
}

TEST(ClampTest, ALinkedParentIsFollowed) {
  const ClampedPath path{.path = "/tmp/l/db", .standardised = "/tmp/l/db", .viaParent = liveData + "/db"};
  EXPECT_EQ(clamp(path, isolatedFrom("/Users/u")), std::string(isolatedData) + "/db");
}

TEST(ClampTest, ThePathAsWrittenGoesBeforeTheOneWithItsParentResolved) {
  const ClampedPath path{
      .path = liveData + "/a", .standardised = liveData + "/a", .viaParent = liveData + "/b/a"};
  EXPECT_EQ(clamp(path, isolatedFrom("/Users/u")), std::string(isolatedData) + "/a");
}

TEST(ClampTest, APathThatStaysIsTheCallersText) {
  const ClampedPath path{.path = "/a/../b/", .standardised = "/b", .viaParent = "/c/b"};
  EXPECT_EQ(clamp(path, isolatedFrom("/Users/u")), "/a/../b/");
}

TEST(ClampTest, LiveAccessChangesNoPath) {
  const auto path = plain(liveData + "/db.sqlite");
  EXPECT_EQ(clamp(path, {.live = true, .real = "/Users/u"}), path.path);
}

TEST(ClampTest, LiveAccessAsksNothingOfTheFileSystem) {
  const UnaskedFiles files;
  EXPECT_EQ(clamp(liveData + "/db", {.live = true, .real = "/Users/u"}, files), liveData + "/db");
}

TEST(ClampTest, WhatIsCutOffIsCountedInCharacters) {
  const std::string rest = "/Library/Application Support/Tamo/db";
  // The Kelvin sign and the dotted capital I have another size in bytes than their lower case.
  EXPECT_EQ(clampedPlainly("/Users/\u212A" + rest, "/Users/k"), std::string(isolatedData) + "/db");
  EXPECT_EQ(clampedPlainly("/Users/k" + rest, "/Users/\u212A"), std::string(isolatedData) + "/db");
  EXPECT_EQ(clampedPlainly("/Users/\u0130" + rest, "/Users/\u0130"), std::string(isolatedData) + "/db");
  EXPECT_EQ(clampedPlainly("/Users/\u0416" + rest, "/Users/\u0436"), std::string(isolatedData) + "/db");
}

TEST(ClampTest, ComposedAndDecomposedNamesAreTheSamePlace) {
  const std::string rest = "/Library/Application Support/Tamo/e\u0301";
  EXPECT_EQ(clampedPlainly("/Users/e\u0301" + rest, "/Users/\u00E9"), std::string(isolatedData) + "/e\u0301");
  EXPECT_EQ(clampedPlainly("/Users/\u00C9" + rest, "/Users/e\u0301"), std::string(isolatedData) + "/e\u0301");
  EXPECT_EQ(clampedPlainly("/Users/e" + rest, "/Users/\u00E9"), "/Users/e" + rest);
}

TEST(RefusalTest, ThePathStandsInAFixedSentence) {
  EXPECT_EQ(refusal("/Users/u/Downloads/Tamo.app"),
            "tamo.test_copy_refused_live_data app=/Users/u/Downloads/Tamo.app (only /Applications/Tamo.app "
            "opens the founder's data and Core)");
}

class GuardOnFilesTest : public ::testing::Test {
 protected:
  void placeCopy(const std::string& path, const std::string& bundleID) {
    files.contents[path + "/Contents/Info.plist"] =
        "<plist><dict><key>CFBundleIdentifier</key><string>" + bundleID + "</string></dict></plist>";
  }
  bool mayOpen(const std::string& path) { return mayOpenLive(path, "/Users/u", files); }

  fakes::Ledger ledger;
  fakes::FakeClock clock{ledger};
  fakes::FakeFiles files{ledger, clock};
};

TEST_F(GuardOnFilesTest, AHelperIsJudgedByTheApplicationAroundIt) {
  placeCopy("/Applications/Tamo.app", "studio.pell.Tamo");
  placeCopy("/Applications/Tamo.app/Contents/Library/LoginItems/Core.app", "studio.pell.Tamo.Core");
  EXPECT_TRUE(mayOpen("/Applications/Tamo.app/Contents/Library/LoginItems/Core.app"));
  EXPECT_TRUE(mayOpen("/Applications/Tamo.app"));
}

TEST_F(GuardOnFilesTest, AHelperByItselfMayNot) {
  placeCopy("/Applications/Core.app", "studio.pell.Tamo.Core");
  EXPECT_FALSE(mayOpen("/Applications/Core.app"));
}

TEST_F(GuardOnFilesTest, AFolderThatIsNoBundleMayNot) {
  files.directories.insert("/Applications/Tamo.app");
  EXPECT_FALSE(mayOpen("/Applications/Tamo.app"));
}

TEST_F(GuardOnFilesTest, AnInstalledPathThatIsALinkMayNot) {
  placeCopy("/Applications/Tamo.app", "studio.pell.Tamo");
  files.resolved["/Applications/Tamo.app"] = "/Volumes/X/Tamo.app";
  EXPECT_FALSE(mayOpen("/Applications/Tamo.app/Contents/Library/LoginItems/Core.app"));
}

TEST_F(GuardOnFilesTest, TheLookAtACopyGathersWhatTheRuleAsks) {
  placeCopy("/D/Tamo.app", "a.b");
  files.resolved["/D/Tamo.app"] = "/E/Tamo.app";
  const auto copy = appCopy("/D/./Tamo.app/Contents/Library/LoginItems/Core.app", "/Users/u", files);
  EXPECT_EQ(copy.appPath, "/D/Tamo.app");
  EXPECT_EQ(copy.resolvedPath, "/E/Tamo.app");
  EXPECT_EQ(copy.bundleID, "a.b");
  EXPECT_EQ(copy.home, "/Users/u");
}

TEST_F(GuardOnFilesTest, OnlyTheParentOfAClampedPathIsResolved) {
  files.resolved["/tmp/l"] = liveData;
  files.resolved["/tmp/l/db"] = "/elsewhere/db";
  const auto path = clampedPath("/tmp/./l/db/", files);
  EXPECT_EQ(path.path, "/tmp/./l/db/");
  EXPECT_EQ(path.standardised, "/tmp/l/db");
  EXPECT_EQ(path.viaParent, liveData + "/db");
}

TEST_F(GuardOnFilesTest, AClampedPathIsFollowedThroughItsParent) {
  files.resolved["/tmp/l"] = liveData;
  EXPECT_EQ(clamp("/tmp/l/db", isolatedFrom("/Users/u"), files), std::string(isolatedData) + "/db");
  EXPECT_EQ(clamp("/tmp/l/db", {.live = true, .real = "/Users/u"}, files), "/tmp/l/db");
  EXPECT_EQ(clamp("/tmp/m/../x", isolatedFrom("/Users/u"), files), "/tmp/m/../x");
}

TEST_F(GuardOnFilesTest, TheRootIsItsOwnParent) {
  EXPECT_EQ(clamp("/", isolatedFrom("/Users/u"), files), "/");
  EXPECT_EQ(clampedPath("/", files).viaParent, "/");
}

}  // namespace
}  // namespace tamo::LiveDataGuard

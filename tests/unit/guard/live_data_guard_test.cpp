#include "guard/live_data_guard.hpp"

#include <gtest/gtest.h>
#include <vector>

#include "contract/binary_list_builder.hpp"
#include "fakes/fake_files.hpp"
#include "fakes/fake_surroundings.hpp"

namespace tamo::LiveDataGuard {
namespace {

const std::string staged = "/Users/u/Library/Application Support/Tamo/staged/Tamo.app";

/// A copy of user u that is reached without links.
AppCopy releaseCopyAt(const std::string& path) {
  return {.appPath = path, .resolvedPath = path, .bundleID = "studio.pell.Tamo", .home = "/Users/u"};
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

TEST(RealHomeTest, AHomeIsTakenAsItIsWritten) {
  fakes::FakeUser user;
  for (const auto* home : {"", "/Users/./v/", "relative", "/var/empty"}) {
    user.entry->home = home;
    EXPECT_EQ(realHome(user), home);
  }
}

TEST(RealHomeDeathTest, AnEntryWithoutAHomeStopsTheProcess) {
  fakes::FakeUser user;
  user.entry->home = std::nullopt;
  EXPECT_DEATH(static_cast<void>(realHome(user)), "fatal: the user database has an entry without a home");
}

TEST(StagedAppTest, TheStagedCopyLiesInTheLiveData) {
  EXPECT_EQ(stagedApp("/Users/u"), staged);
  EXPECT_EQ(stagedApp("/Users/./u/"), staged);
  EXPECT_EQ(stagedApp("/Users/v/.."), "/Users/Library/Application Support/Tamo/staged/Tamo.app");
  EXPECT_EQ(stagedApp("/Users/U"), "/Users/U/Library/Application Support/Tamo/staged/Tamo.app");
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
      {"/Users/u/Tools/Contents/Library/LoginItems/tool", "/Users/u/Tools"},
      {"/Contents/Library/LoginItems/tool", ""},
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
      {"/A.app/Contents/Library/LoginItems/../B.app", "/A.app/Contents/Library/B.app"},
      {"/A.app/Contents/Library/LoginItems2/B.app", "/A.app/Contents/Library/LoginItems2/B.app"},
      {"/A.app/Library/LoginItems/B.app", "/A.app/Library/LoginItems/B.app"},
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
  EXPECT_TRUE(mayOpenLive(releaseCopyAt(staged + "/")));
}

TEST(MayOpenLiveTest, TheHomeIsStandardisedAndKeepsItsLetterCase) {
  auto copy = releaseCopyAt(staged);
  copy.home = "/Users/v/../u/";
  EXPECT_TRUE(mayOpenLive(copy));
  copy.home = "/Users/U";
  EXPECT_FALSE(mayOpenLive(copy));
}

TEST(MayOpenLiveTest, TheStagedCopyMustNotBeReachedThroughALinkEither) {
  auto copy = releaseCopyAt(staged);
  copy.resolvedPath = "/Applications/Tamo.app";
  EXPECT_FALSE(mayOpenLive(copy));
}

TEST(MayOpenLiveTest, TheInstalledCopyMayWhateverTheHomeIs) {
  auto copy = releaseCopyAt("/Applications/Tamo.app");
  for (const auto* home : {"", "/var/empty", "/Users/v"}) {
    copy.home = home;
    EXPECT_TRUE(mayOpenLive(copy)) << home;
  }
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
  for (const auto* path :
       {"/applications/tamo.app", "/Applications/tamo.app", "/APPLICATIONS/TAMO.APP", "/Applications",
        "/Users/u/Downloads/Tamo.app", "/Users/u/Applications/Tamo.app", "/Applications/Tamo.app/Contents",
        "/Applications/Tamo 2.app", "/Applications/Tamo.app2", "/Applications/ Tamo.app",
        "/Applications/Tamo.app ", "/Applications/Tamo", "/Volumes/X/Applications/Tamo.app",
        "/private/Applications/Tamo.app", "/Applications/x/Tamo.app", "/", ""}) {
    EXPECT_FALSE(mayOpenLive(releaseCopyAt(path))) << path;
  }
}

TEST(MayOpenLiveTest, OnlyTheStagedCopyItselfMayInTheLiveData) {
  const std::string data = "/Users/u/Library/Application Support/Tamo";
  for (const auto* place : {"", "/staged", "/Tamo.app", "/staged/Tamo.app/Contents", "/staged/x/Tamo.app",
                            "/Staged/Tamo.app", "/staged/tamo.app", "/staged/Tamo 2.app"}) {
    EXPECT_FALSE(mayOpenLive(releaseCopyAt(data + place))) << place;
  }
  EXPECT_FALSE(mayOpenLive(releaseCopyAt("/users/u/Library/Application Support/Tamo/staged/Tamo.app")));
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
  for (const auto& identifier : std::vector<std::string>{
           "studio.pell.Tamo.Core", "studio.pell.Tamo2", "studio.pell", "studio.pell.tamo",
           "STUDIO.PELL.TAMO", "studio.pell.Tamo ", " studio.pell.Tamo", "studio.pell. Tamo",
           "\uFEFFstudio.pell.Tamo", "studio.pell.Tamo\u0301", "studio.pell.Tamo\u200B",
           std::string("studio.pell.Tamo\0", 17), "studio.pell.Tamo\n", ""}) {
    copy.bundleID = identifier;
    EXPECT_FALSE(mayOpenLive(copy)) << identifier;
  }
  copy.bundleID = std::nullopt;
  EXPECT_FALSE(mayOpenLive(copy));
}

TEST(DataHomeTest, OnlyLiveDataAreInTheRealHome) {
  EXPECT_EQ(dataHome({.live = true, .real = "/Users/u"}), "/Users/u");
  for (const auto* home : {"/Users/u", "", "/private/tmp/studio.pell.Tamo-isolated/"})
    EXPECT_EQ(dataHome({.live = false, .real = home}), "/private/tmp/studio.pell.Tamo-isolated") << home;
}

TEST(DataHomeTest, TheRealHomeIsGivenAsItStandsInTheDatabase) {
  for (const auto* home : {"/Users/./u/", "/users/U", ""})
    EXPECT_EQ(dataHome({.live = true, .real = home}), home);
}

TEST(RefusalTest, ThePathStandsInAFixedSentence) {
  EXPECT_EQ(refusal("/Users/u/Downloads/Tamo.app"),
            "tamo.test_copy_refused_live_data app=/Users/u/Downloads/Tamo.app (only /Applications/Tamo.app "
            "opens the founder's data and Core)");
}

TEST(RefusalTest, ThePathStandsAsItWasGiven) {
  EXPECT_EQ(refusal(""),
            "tamo.test_copy_refused_live_data app= (only /Applications/Tamo.app opens the founder's data and "
            "Core)");
  EXPECT_TRUE(
      refusal("/a/../\u00E9 /").starts_with("tamo.test_copy_refused_live_data app=/a/../\u00E9 / (only "));
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

TEST_F(GuardOnFilesTest, ACopyThatDeclaresNoIdentifierMayNot) {
  auto& info = files.contents["/Applications/Tamo.app/Contents/Info.plist"];
  for (const auto* list :
       {"<plist><dict/></plist>", "<plist><string>studio.pell.Tamo</string></plist>",
        "<plist><dict><key>CFBundleName</key><string>studio.pell.Tamo</string></dict></plist>",
        "<plist><dict><key>CFBundleIdentifier</key><array><string>studio.pell.Tamo</string>"
        "</array></dict></plist>",
        "<plist><dict><key>CFBundleIdentifier</key><string>studio.pell.Tamo</string></dict>", ""}) {
    info = list;
    EXPECT_FALSE(mayOpen("/Applications/Tamo.app")) << list;
  }
  placeCopy("/Applications/Tamo.app", "studio.pell.Tamo");
  EXPECT_TRUE(mayOpen("/Applications/Tamo.app"));
  files.failsToRead = true;
  EXPECT_FALSE(mayOpen("/Applications/Tamo.app"));
}

TEST_F(GuardOnFilesTest, ACopyWithABinaryInfoFileMay) {
  files.contents["/Applications/Tamo.app/Contents/Info.plist"] = BinaryListBuilder()
                                                                     .addDictionary("\1", "\2")
                                                                     .add(
                                                                         "\x5F\x10\x12"
                                                                         "CFBundleIdentifier")
                                                                     .add(
                                                                         "\x5F\x10\x10"
                                                                         "studio.pell.Tamo")
                                                                     .bytes();
  EXPECT_TRUE(mayOpen("/Applications/Tamo.app"));
}

TEST_F(GuardOnFilesTest, AByteOrderMarkInFrontOfTheIdentifierIsAPartOfIt) {
  placeCopy("/Applications/Tamo.app", "\uFEFFstudio.pell.Tamo");
  EXPECT_FALSE(mayOpen("/Applications/Tamo.app"));
}

TEST_F(GuardOnFilesTest, TheStagedCopyMayWithItsHelpers) {
  placeCopy(staged, "studio.pell.Tamo");
  EXPECT_TRUE(mayOpen(staged));
  EXPECT_TRUE(mayOpen(staged + "/Contents/Library/LoginItems/Tamo Core.app/Contents/MacOS/Tamo Core"));
  EXPECT_FALSE(mayOpenLive(staged, "/Users/v", files));
}

TEST_F(GuardOnFilesTest, AHelperThatIsALinkIsJudgedByTheApplicationAroundIt) {
  const std::string helper = "/Applications/Tamo.app/Contents/Library/LoginItems/Core.app";
  placeCopy("/Applications/Tamo.app", "studio.pell.Tamo");
  files.resolved[helper] = "/Volumes/X/Core.app";
  EXPECT_TRUE(mayOpen(helper));
}

TEST_F(GuardOnFilesTest, AHelperOfACopyElsewhereMayNot) {
  placeCopy("/Users/u/Downloads/Tamo.app", "studio.pell.Tamo");
  placeCopy("/Applications/Tamo.app", "studio.pell.Tamo");
  EXPECT_FALSE(mayOpen("/Users/u/Downloads/Tamo.app/Contents/Library/LoginItems/Core.app"));
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

}  // namespace
}  // namespace tamo::LiveDataGuard

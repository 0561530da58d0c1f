#include "move/app_move.hpp"

#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "fakes/fake_files.hpp"
#include "fakes/fake_surroundings.hpp"
#include "unit/move/info_files.hpp"

namespace tamo::AppMove {
namespace {

const std::string stagedCopy = "/Users/u/Library/Application Support/Tamo/staged/Tamo.app";
const std::string translocated = "/private/var/folders/x/T/AppTranslocation/0F-1/d/Tamo.app";

LiveDataGuard::AppCopy releaseCopyAt(const std::string& path) {
  return {.appPath = path, .resolvedPath = path, .bundleID = "studio.pell.Tamo", .home = "/Users/u"};
}

TEST(ConstantsTest, TheNamesAreFixed) {
  EXPECT_EQ(operation, "move-to-applications");
  EXPECT_EQ(destination, "/Applications/Tamo.app");
  EXPECT_EQ(resultName, "move-to-applications.json");
}

TEST(NeededTest, CopiesThatMayOpenLiveDataStay) {
  EXPECT_FALSE(needed(releaseCopyAt("/Applications/Tamo.app")));
  EXPECT_FALSE(needed(releaseCopyAt(stagedCopy)));
}

TEST(NeededTest, AReleaseCopyElsewhereMoves) {
  EXPECT_TRUE(needed(releaseCopyAt("/Users/u/Downloads/Tamo.app")));
  EXPECT_TRUE(needed(releaseCopyAt(translocated)));
  EXPECT_TRUE(needed(releaseCopyAt("/Applications/tamo.app")));
}

TEST(NeededTest, AnInstalledPathThatIsALinkMoves) {
  auto copy = releaseCopyAt("/Applications/Tamo.app");
  copy.resolvedPath = "/Volumes/X/Tamo.app";
  EXPECT_TRUE(needed(copy));
}

TEST(NeededTest, OtherIdentifiersNeverMove) {
  auto copy = releaseCopyAt("/Users/u/Downloads/Tamo.app");
  for (const auto* identifier : {"studio.pell.Tamo.Core", "studio.pell.tamo", ""}) {
    copy.bundleID = identifier;
    EXPECT_FALSE(needed(copy)) << identifier;
  }
  copy.bundleID = std::nullopt;
  EXPECT_FALSE(needed(copy));
}

struct PlanRow {
  Builds builds;
  Plan plan;
};

TEST(PlanTest, OnlyAKnownOlderBuildIsReplaced) {
  constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
  const std::vector<PlanRow> table{
      {{.source = 42, .installed = 41, .installedExists = true}, Plan::replace},
      {{.source = 42, .installed = 42, .installedExists = true}, Plan::openInstalled},
      {{.source = 42, .installed = 43, .installedExists = true}, Plan::openInstalled},
      {{.source = 1, .installed = -1, .installedExists = true}, Plan::replace},
      {{.source = 0, .installed = smallest, .installedExists = true}, Plan::replace},
      {{.source = smallest, .installed = 0, .installedExists = true}, Plan::openInstalled},
      {{.source = std::nullopt, .installed = 41, .installedExists = true}, Plan::openInstalled},
      {{.source = 42, .installed = std::nullopt, .installedExists = true}, Plan::openInstalled},
      {{.source = std::nullopt, .installed = std::nullopt, .installedExists = true}, Plan::openInstalled},
  };
  for (const auto& row : table) {
    EXPECT_EQ(plan(row.builds), row.plan)
        << row.builds.source.value_or(-99) << " over " << row.builds.installed.value_or(-99);
  }
}

TEST(PlanTest, NothingInstalledIsAlwaysACopy) {
  EXPECT_EQ(plan({.source = 42, .installed = 43, .installedExists = false}), Plan::copy);
  EXPECT_EQ(plan({.source = 42, .installed = std::nullopt, .installedExists = false}), Plan::copy);
  EXPECT_EQ(plan({.source = std::nullopt, .installed = std::nullopt, .installedExists = false}), Plan::copy);
}

TEST(ResultOfTest, OnlyACopyInPlaceIsOk) {
  EXPECT_EQ(resultOf("moved"), (Result{true, "moved"}));
  EXPECT_EQ(resultOf("opened"), (Result{true, "opened"}));
  for (const auto* code :
       {"cancelled", "not_writable", "copy_failed", "Moved", "moved ", "no_helper", "timeout", ""})
    EXPECT_EQ(resultOf(code), (Result{false, code}));
}

struct OldCopyRow {
  std::string here;
  std::optional<std::string> original;
  std::optional<std::string> old;
};

TEST(OldCopyTest, WhatTheUserDownloadedIsLeftBehind) {
  const std::string downloaded = "/Users/u/Downloads/Tamo.app";
  const std::vector<OldCopyRow> table{
      {downloaded, std::nullopt, downloaded},
      {translocated, downloaded, downloaded},
      {translocated, std::nullopt, std::nullopt},
      {"/x/AppTranslocation", std::nullopt, "/x/AppTranslocation"},
      {"/x/apptranslocation/Tamo.app", std::nullopt, "/x/apptranslocation/Tamo.app"},
      {"/Applications/Tamo 2.app", std::nullopt, "/Applications/Tamo 2.app"},
      {"/Applications/Other/Tamo.app", std::nullopt, "/Applications/Other/Tamo.app"},
      {"/Applications/tamo.app", std::nullopt, "/Applications/tamo.app"},
      {"/Applications/Tamo.app ", std::nullopt, "/Applications/Tamo.app "},
      {"/Applications/Utilities/Tamo.app", std::nullopt, "/Applications/Utilities/Tamo.app"},
      {"/Volumes/Tamo/Tamo.app", std::nullopt, "/Volumes/Tamo/Tamo.app"},
      {"/private/Applications/Tamo.app", std::nullopt, "/private/Applications/Tamo.app"},
      {"/Users/u/Applications/Tamo.app", std::nullopt, "/Users/u/Applications/Tamo.app"},
      {"/Users/u/./Downloads/Tamo.app/", std::nullopt, "/Users/u/./Downloads/Tamo.app/"},
  };
  for (const auto& row : table)
    EXPECT_EQ(oldCopy(row.here, row.original), row.old) << row.here;
}

TEST(OldCopyTest, AKnownOriginalIsTakenAsItIsTold) {
  for (const auto* original : {"/x/AppTranslocation/d/Tamo.app", "/Applications/tamo.app", "/Applications",
                               "/Volumes/Tamo/Tamo.app", "/private/Applications/Tamo.app"}) {
    EXPECT_EQ(oldCopy(translocated, original), original);
  }
}

TEST(OldCopyTest, TheDestinationIsNeverLeftBehind) {
  for (const auto* path : {"/Applications/Tamo.app", "/Applications/Tamo.app/", "/Applications/./Tamo.app",
                           "//Applications//Tamo.app", "/Users/../Applications/Tamo.app"}) {
    EXPECT_EQ(oldCopy(path, std::nullopt), std::nullopt) << path;
    EXPECT_EQ(oldCopy(translocated, path), std::nullopt) << path;
  }
}

struct IsCopyRow {
  platform::RunningApplication application;
  bool is;
};

TEST(IsCopyTest, IdentifierAndStandardisedPathBothCount) {
  const RunningCopy copy{.path = "/Users/u/Downloads/Tamo.app", .bundleID = "studio.pell.Tamo"};
  const std::vector<IsCopyRow> table{
      {{"studio.pell.Tamo", "/Users/u/Downloads/Tamo.app"}, true},
      {{"studio.pell.Tamo", "/Users/u/Downloads/Tamo.app/"}, true},
      {{"studio.pell.Tamo", "/Users/u/Music/../Downloads/./Tamo.app"}, true},
      {{"studio.pell.Tamo", "/Users/u/Downloads/tamo.app"}, false},
      {{"studio.pell.Tamo", "/Users/u/Downloads/Tamo 2.app"}, false},
      {{"studio.pell.Tamo", "/Applications/Tamo.app"}, false},
      {{"studio.pell.Tamo", "/Users/u/Downloads/Tamo.app/Contents/Library/LoginItems/Core.app"}, false},
      {{"studio.pell.Tamo.Core", "/Users/u/Downloads/Tamo.app"}, false},
      {{"studio.pell.tamo", "/Users/u/Downloads/Tamo.app"}, false},
      {{std::nullopt, "/Users/u/Downloads/Tamo.app"}, false},
      {{"studio.pell.Tamo", std::nullopt}, false},
      {{std::nullopt, std::nullopt}, false},
  };
  for (const auto& row : table) {
    EXPECT_EQ(isCopy(copy, row.application), row.is)
        << row.application.bundleIdentifier.value_or("none") << row.application.bundlePath.value_or(" none");
  }
}

TEST(IsCopyTest, NeitherBlanksNorCaseNorAPartOfAPathMakeAnotherOne) {
  const RunningCopy copy{.path = "/Users/u/Downloads/Tamo.app", .bundleID = "studio.pell.Tamo"};
  for (const auto* path :
       {"/Users/u/Downloads/Tamo.app ", "/Users/u/Downloads", "/Users/u/Downloads/Tamo.app2",
        "/users/u/downloads/tamo.app", "/private/Users/u/Downloads/Tamo.app", "Users/u/Downloads/Tamo.app/..",
        "/x/Users/u/Downloads/Tamo.app", ""}) {
    EXPECT_FALSE(isCopy(copy, {"studio.pell.Tamo", path})) << path;
  }
  for (const auto* identifier :
       {"studio.pell.Tamo ", " studio.pell.Tamo", "STUDIO.PELL.TAMO", "studio.pell", ""})
    EXPECT_FALSE(isCopy(copy, {identifier, copy.path})) << identifier;
}

TEST(IsCopyTest, TheCopysOwnPathIsStandardisedAsWell) {
  for (const auto* path : {"/Users/u/Music/../Downloads/Tamo.app", "/Users//u/Downloads/./Tamo.app/"}) {
    const RunningCopy copy{.path = path, .bundleID = "studio.pell.Tamo"};
    EXPECT_TRUE(isCopy(copy, {"studio.pell.Tamo", "/Users/u/Downloads/Tamo.app"})) << path;
  }
}

TEST(IsCopyTest, AnIdentifierThatIsEmptyIsOneAllTheSame) {
  const RunningCopy copy{.path = "/Users/u/Tamo.app", .bundleID = ""};
  EXPECT_TRUE(isCopy(copy, {"", "/Users/u/Tamo.app"}));
  EXPECT_FALSE(isCopy(copy, {std::nullopt, "/Users/u/Tamo.app"}));
}

TEST(IsCopyTest, BothSpellingsOfAnIdentifierAreOne) {
  const RunningCopy copy{.path = "/Users/u/Tamo.app", .bundleID = "studio.zo\u00EB"};
  EXPECT_TRUE(isCopy(copy, {"studio.zoe\u0308", "/Users/u/Tamo.app"}));
}

TEST(IsCopyTest, AnInstalledCopyIsOneToo) {
  const RunningCopy copy{.path = "/Applications/Tamo.app", .bundleID = "studio.pell.Tamo"};
  EXPECT_TRUE(isCopy(copy, {"studio.pell.Tamo", "/Applications/Tamo.app"}));
}

TEST(IsCopyTest, BothSpellingsOfAnAccentAreOnePath) {
  const RunningCopy copy{.path = "/Users/zo\u00EB/Tamo.app", .bundleID = "studio.pell.Tamo"};
  EXPECT_TRUE(isCopy(copy, {"studio.pell.Tamo", "/Users/zoe\u0308/Tamo.app"}));
}

struct BuildRow {
  std::string_view version;
  std::optional<std::int64_t> build;
};

TEST(BuildNumberTest, TheFirstPieceBetweenDotsCounts) {
  const std::vector<BuildRow> table{
      {"1234", 1234}, {"12.3.4", 12}, {".5", 5},
      {"...7..8", 7}, {"9.", 9},      {"-3", -3},
      {"+8", 8},      {"12.x", 12},   {"9223372036854775807.1", std::numeric_limits<std::int64_t>::max()},
  };
  for (const auto& row : table)
    EXPECT_EQ(buildNumber(row.version), row.build) << row.version;
}

TEST(BuildNumberTest, AnythingButADecimalIntegerIsNone) {
  for (const auto* version : {"", ".", "...", "1a", "a", " 1", "1 ", "1,2", "+", "+-1", "x.1", "0x10",
                              "9223372036854775808", "$(CURRENT_PROJECT_VERSION)"}) {
    EXPECT_EQ(buildNumber(version), std::nullopt) << version;
  }
}

class MoveOnFilesTest : public ::testing::Test {
 protected:
  void placeInfo(const std::string& path, const std::string& entries) {
    files.contents[path + "/Contents/Info.plist"] = infoWith(entries);
  }
  void placeRelease(const std::string& path) { placeInfo(path, identifierEntry("studio.pell.Tamo")); }

  fakes::Ledger ledger;
  fakes::FakeClock clock{ledger};
  fakes::FakeFiles files{ledger, clock};
  fakes::FakeBundles bundles{ledger, clock};
};

TEST_F(MoveOnFilesTest, TheBuildIsReadFromTheInfoFile) {
  placeInfo("/A.app", "<key>CFBundleVersion</key><string>4211</string>");
  EXPECT_EQ(build(files, "/A.app"), 4211);
}

TEST_F(MoveOnFilesTest, AVersionStoredAsANumberIsNoBuild) {
  for (const auto* value : {"<integer>42</integer>", "<real>42</real>", "<true/>"}) {
    placeInfo("/A.app", std::string("<key>CFBundleVersion</key>") + value);
    EXPECT_EQ(build(files, "/A.app"), std::nullopt) << value;
  }
}

TEST_F(MoveOnFilesTest, ABundleThatTellsNoVersionHasNoBuild) {
  EXPECT_EQ(build(files, "/A.app"), std::nullopt);
  placeInfo("/A.app", "<key>CFBundleShortVersionString</key><string>42</string>");
  EXPECT_EQ(build(files, "/A.app"), std::nullopt);
  files.contents["/A.app/Contents/Info.plist"] = "<dict>no list";
  EXPECT_EQ(build(files, "/A.app"), std::nullopt);
}

TEST_F(MoveOnFilesTest, AHelperMovesWithTheApplicationAroundIt) {
  placeRelease("/Users/u/Downloads/Tamo.app");
  EXPECT_TRUE(needed("/Users/u/Downloads/Tamo.app/Contents/Library/LoginItems/Core.app", "/Users/u", files));
  placeRelease("/Applications/Tamo.app");
  EXPECT_FALSE(needed("/Applications/Tamo.app/Contents/Library/LoginItems/Core.app", "/Users/u", files));
}

TEST_F(MoveOnFilesTest, AFolderThatIsNoBundleNeverMoves) {
  files.directories.insert("/Users/u/Downloads/Tamo.app");
  EXPECT_FALSE(needed("/Users/u/Downloads/Tamo.app", "/Users/u", files));
}

TEST_F(MoveOnFilesTest, TheOriginalOfATranslocatedCopyIsAskedFor) {
  bundles.originals[translocated] = "/Users/u/Downloads/Tamo.app";
  EXPECT_EQ(originalURL(translocated, bundles), "/Users/u/Downloads/Tamo.app");
}

TEST_F(MoveOnFilesTest, AnOriginalThatTheSystemCannotTellIsAbsent) {
  EXPECT_EQ(originalURL(translocated, bundles), std::nullopt);
  EXPECT_EQ(ledger.count("bundles: original"), 1U);
}

TEST_F(MoveOnFilesTest, TheOriginalIsAskedForByThePathAsItIsAndEachTime) {
  const std::string folder = "/Users/u/AppTranslocation/./Tamo.app/";
  EXPECT_EQ(originalURL(folder, bundles), std::nullopt);
  bundles.originals[folder] = "";
  EXPECT_EQ(originalURL(folder, bundles), "");
  const std::string asked = "bundles: original " + folder;
  EXPECT_EQ(ledger.texts(), (std::vector<std::string>{asked, asked}));
}

TEST_F(MoveOnFilesTest, TheSystemIsNotAskedAboutOtherCopies) {
  for (const auto* path : {"/Users/u/Downloads/Tamo.app", "/x/apptranslocation/d/Tamo.app",
                           "/x/AppTranslocation", "/x/NoAppTranslocation/d/Tamo.app",
                           "/x/AppTranslocation /d/Tamo.app", "AppTranslocation/d/Tamo.app"}) {
    bundles.originals[path] = "/never";
    EXPECT_EQ(originalURL(path, bundles), std::nullopt) << path;
  }
  EXPECT_EQ(ledger.count("bundles: original"), 0U);
}

TEST(ResultURLTest, TheResultLiesInTheContainerOfTheApplication) {
  EXPECT_EQ(resultURL("/Users/u", "studio.pell.Tamo"),
            "/Users/u/Library/Containers/studio.pell.Tamo/Data/Library/Application Support/Tamo/"
            "move-to-applications.json");
}

TEST(ResultURLTest, TheIdentifierIsPutInUnchanged) {
  EXPECT_EQ(resultURL("/h/", "a/../b"),
            "/h/Library/Containers/a/../b/Data/Library/Application Support/Tamo/move-to-applications.json");
}

TEST(ResultURLTest, AnEmptyIdentifierIsPutInLikeAnyOther) {
  EXPECT_EQ(resultURL("/h", ""),
            "/h/Library/Containers//Data/Library/Application Support/Tamo/move-to-applications.json");
}

TEST(ResultTest, ResultsAreEqualWhenBothFieldsAre) {
  EXPECT_EQ((Result{true, "moved"}), (Result{true, "moved"}));
  EXPECT_NE((Result{true, "moved"}), (Result{false, "moved"}));
  EXPECT_NE((Result{true, "moved"}), (Result{true, "Moved"}));
  EXPECT_NE((Result{true, "moved"}), (Result{true, "moved "}));
  EXPECT_NE((Result{false, "zo\u00EB"}), (Result{false, "zoe\u0308"}));
}

TEST(ResultTest, AResultIsRecordedInOneCompactObject) {
  EXPECT_EQ(encoded({.ok = true, .code = "moved"}), R"({"ok":true,"code":"moved"})");
  EXPECT_EQ(encoded({.ok = false, .code = "not_writable"}), R"({"ok":false,"code":"not_writable"})");
  EXPECT_EQ(encoded({.ok = false, .code = "\"/\n"}), R"({"ok":false,"code":"\"\/\n"})");
}

TEST(ResultTest, WhatIsRecordedIsTheResultAndNotWhatItsCodeMeans) {
  EXPECT_EQ(encoded({.ok = false, .code = "moved"}), R"({"ok":false,"code":"moved"})");
  EXPECT_EQ(encoded({.ok = true, .code = "cancelled"}), R"({"ok":true,"code":"cancelled"})");
  EXPECT_EQ(encoded({.ok = true, .code = ""}), R"({"ok":true,"code":""})");
}

TEST(WordsTest, EachFailureHasItsWords) {
  EXPECT_EQ(words("cancelled"),
            "The move was cancelled, so Tamo is still in Downloads. Show it in Finder and drag it into "
            "Applications.");
  EXPECT_EQ(
      words("not_writable"),
      "macOS didn\u2019t let Tamo write to your Applications folder. Show it in Finder and drag it into "
      "Applications.");
  EXPECT_EQ(words("copy_failed"),
            "Tamo couldn\u2019t copy itself into Applications. Show it in Finder and drag it into "
            "Applications.");
  EXPECT_EQ(words("no_helper"),
            "macOS didn\u2019t let Tamo move itself from this temporary copy. Show it in Finder and drag it "
            "into Applications.");
  EXPECT_EQ(words("timeout"),
            "Tamo didn\u2019t hear back while moving. Show it in Finder and drag it into Applications.");
}

TEST(WordsTest, EveryOtherCodeHasTheGeneralWords) {
  for (const auto* code :
       {"moved", "opened", "Cancelled", "cancelled ", " cancelled", "", "anything", "not-writable",
        "NOT_WRITABLE", "copy_failed\n", "no helper", "timeout.", "time"}) {
    EXPECT_EQ(words(code), "Tamo couldn\u2019t move itself. Show it in Finder and drag it into Applications.")
        << code;
  }
}

}  // namespace
}  // namespace tamo::AppMove

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "fakes/fake_files.hpp"
#include "guard/live_data_guard.hpp"

namespace tamo::LiveDataGuard {
namespace {

const std::string liveData = "/Users/u/Library/Application Support/Tamo";
const std::string isolated = "/private/tmp/studio.pell.Tamo-isolated/Library/Application Support/Tamo";
const Access noAccess{.live = false, .real = "/Users/u"};
const Access liveAccess{.live = true, .real = "/Users/u"};

/// A path of these three forms, for a copy that may not open live data.
std::string clampedAs(const std::string& path, const std::string& standardised,
                      const std::string& viaParent) {
  return clamp({.path = path, .standardised = standardised, .viaParent = viaParent}, noAccess);
}

/// A path that leads where it says, without links.
std::string clamped(const std::string& path, const std::string& home = "/Users/u") {
  return clamp({.path = path, .standardised = path, .viaParent = path}, {.live = false, .real = home});
}

/// A file below the live data of a home whose name is written in two ways.
std::string clampedBelow(const std::string& writtenHome, const std::string& home) {
  return clamped("/Users/" + writtenHome + "/Library/Application Support/Tamo/db", "/Users/" + home);
}

TEST(ClampTest, APathInTheLiveDataIsSentToTheIsolatedData) {
  EXPECT_EQ(clamped(liveData + "/db.sqlite"),
            "/private/tmp/studio.pell.Tamo-isolated/Library/Application Support/Tamo/db.sqlite");
  EXPECT_EQ(clamped(liveData + "/a/b c/d"), isolated + "/a/b c/d");
}

TEST(ClampTest, TheLiveDataDirectoryItselfBecomesTheIsolatedOne) {
  EXPECT_EQ(clamped(liveData), "/private/tmp/studio.pell.Tamo-isolated/Library/Application Support/Tamo");
  EXPECT_EQ(clampedAs("/tmp/l/Tamo/", "/tmp/l/Tamo", liveData), isolated);
}

TEST(ClampTest, LetterCaseDoesNotHideTheLiveDataAndIsKeptBelowThem) {
  EXPECT_EQ(clamped("/USERS/U/LIBRARY/APPLICATION SUPPORT/TAMO/DB.SQLITE"), isolated + "/DB.SQLITE");
  EXPECT_EQ(clamped("/users/u/library/application support/tamo/Db"), isolated + "/Db");
  EXPECT_EQ(clamped(liveData + "/Db", "/USERS/U"), isolated + "/Db");
  EXPECT_EQ(clampedAs("/tmp/l/Db", "/tmp/l/Db", "/USERS/U/LIBRARY/APPLICATION SUPPORT/TAMO/Db"),
            isolated + "/Db");
}

TEST(ClampTest, PathsBesideTheLiveDataStay) {
  for (const auto& path :
       {liveData + "PKG1", liveData + "PKG1/M2", liveData + ".app", liveData + "\u0301/db", liveData + " /db",
        std::string("/"), std::string(), std::string("/Users/u/Library/Application Support"),
        std::string("/Users/u"), std::string("/Users/v/Library/Application Support/Tamo/db.sqlite"),
        std::string("/Volumes/X") + liveData + "/db", isolated + "/db", std::string(isolatedHome)}) {
    EXPECT_EQ(clamped(path), path);
  }
}

TEST(ClampTest, ANameThatBeginsWithAMarkLiesInTheLiveDataAllTheSame) {
  EXPECT_EQ(clamped(liveData + "/\u0301db"), isolated + "/\u0301db");
  EXPECT_EQ(clamped(liveData + "/\u200D"), isolated + "/\u200D");
}

TEST(ClampTest, ALinkedParentIsFollowed) {
  EXPECT_EQ(clampedAs("/tmp/l/db", "/tmp/l/db", liveData + "/db"), isolated + "/db");
}

TEST(ClampTest, ThePathAsWrittenGoesBeforeTheOneWithItsParentResolved) {
  EXPECT_EQ(clampedAs(liveData + "/a", liveData + "/a", liveData + "/b/a"), isolated + "/a");
  EXPECT_EQ(clampedAs(liveData + "/a", liveData + "/a", "/elsewhere/a"), isolated + "/a");
}

TEST(ClampTest, WhatIsKeptBelowTheLiveDataIsStandardised) {
  EXPECT_EQ(clampedAs(liveData + "/a/../b/", liveData + "/b", liveData + "/b"), isolated + "/b");
}

TEST(ClampTest, APathThatStaysIsTheCallersText) {
  EXPECT_EQ(clampedAs("/a/../b/", "/b", "/c/b"), "/a/../b/");
}

TEST(ClampTest, LiveAccessChangesNoPath) {
  for (const auto& path : {liveData + "/db.sqlite", liveData, liveData + "/a/../b/", std::string("//x/.")})
    EXPECT_EQ(
        clamp({.path = path, .standardised = liveData + "/s", .viaParent = liveData + "/v"}, liveAccess),
        path);
}

TEST(ClampTest, TheHomeIsStandardised) {
  EXPECT_EQ(clamped(liveData + "/db", "/Users/./v/../u/"), isolated + "/db");
}

TEST(ClampTest, AHomeThatIsEmptyOrUnknownHasLiveDataToo) {
  EXPECT_EQ(clamped("/Library/Application Support/Tamo/db", ""), isolated + "/db");
  EXPECT_EQ(clamped("/var/empty/Library/Application Support/Tamo/db", "/var/empty"), isolated + "/db");
}

TEST(ClampTest, ANameMayHaveAnotherLengthInLowerCase) {
  for (const auto& [written, home] : std::vector<std::pair<std::string, std::string>>{
           {"\u212A", "k"}, {"k", "\u212A"}, {"\u0130", "\u0130"}, {"\u0416", "\u0436"}}) {
    EXPECT_EQ(clampedBelow(written, home), isolated + "/db") << written;
  }
}

TEST(ClampTest, ComposedAndDecomposedNamesAreTheSamePlace) {
  EXPECT_EQ(clampedBelow("e\u0301", "\u00E9"), isolated + "/db");
  EXPECT_EQ(clampedBelow("\u00C9", "e\u0301"), isolated + "/db");
  EXPECT_EQ(clampedBelow("\u0DD9\u0DCA", "\u0DDA"), isolated + "/db");
  EXPECT_EQ(clampedBelow("\u0F71\u0F72\u036D", "\u036D\u0F73"), isolated + "/db");
  EXPECT_EQ(clamped(liveData + "/e\u0301"), isolated + "/e\u0301");
  EXPECT_EQ(clampedBelow("e", "\u00E9"), "/Users/e/Library/Application Support/Tamo/db");
}

/// Each of these names counts as another number of characters in another spelling or letter case, for one
/// library or the other.
TEST(ClampTest, TheCutIsBehindTheLiveDataHoweverCharactersAreCounted) {
  for (const auto* name : {"\u0DDA", "\u0DDD\u0DCA", "\u0130\u0DCA\u0580", "a\u094Da", "a\u034Fa", "\u0600a",
                           "a\u0E33", "\U0001F1E9\U0001F1EAx", "\u0391\u03A3", "\u1193\U00011F02\u0D4E"}) {
    EXPECT_EQ(clampedBelow(name, name), isolated + "/db") << name;
  }
  EXPECT_EQ(clampedBelow("\u0391\u03A3", "\u03B1\u03C3"), isolated + "/db");
}

TEST(ClampTest, BytesThatAreNoTextAreComparedAsTheyAre) {
  EXPECT_EQ(clampedBelow("\xFF", "\xFF"), isolated + "/db");
  EXPECT_EQ(clampedBelow("A\xFF", "a\xFF"), isolated + "/db");
  EXPECT_EQ(clampedBelow("\xFE", "\xFF"), "/Users/\xFE/Library/Application Support/Tamo/db");
  EXPECT_EQ(clamped(liveData + "/\xFF\xE2\x82"), isolated + "/\xFF\xE2\x82");
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

TEST(ClampTest, LiveAccessAsksNothingOfTheFileSystem) {
  const UnaskedFiles files;
  EXPECT_EQ(clamp(liveData + "/a/../db/", liveAccess, files), liveData + "/a/../db/");
}

class ClampOnFilesTest : public ::testing::Test {
 protected:
  fakes::Ledger ledger;
  fakes::FakeClock clock{ledger};
  fakes::FakeFiles files{ledger, clock};
};

TEST_F(ClampOnFilesTest, OnlyTheParentOfAClampedPathIsResolved) {
  files.resolved["/tmp/l"] = liveData;
  files.resolved["/tmp/l/db"] = "/elsewhere/db";
  const auto path = clampedPath("/tmp/./l/db/", files);
  EXPECT_EQ(path.path, "/tmp/./l/db/");
  EXPECT_EQ(path.standardised, "/tmp/l/db");
  EXPECT_EQ(path.viaParent, liveData + "/db");
}

TEST_F(ClampOnFilesTest, APathIsStandardisedBeforeItsParentIsResolved) {
  files.resolved["/tmp/l/x"] = "/elsewhere";
  files.resolved["/tmp/l"] = liveData;
  EXPECT_EQ(clamp("/tmp/l/x/../db", noAccess, files), isolated + "/db");
}

TEST_F(ClampOnFilesTest, APathIsFollowedThroughItsParent) {
  files.resolved["/tmp/l"] = liveData;
  EXPECT_EQ(clamp("/tmp/l/db", noAccess, files), isolated + "/db");
  EXPECT_EQ(clamp("/tmp/l/db", liveAccess, files), "/tmp/l/db");
  EXPECT_EQ(clamp("/tmp/m/../x", noAccess, files), "/tmp/m/../x");
}

/// What is opened under that name may replace the link.
TEST_F(ClampOnFilesTest, ALinkInTheLastPlaceIsNotFollowed) {
  files.resolved["/tmp/l"] = liveData;
  EXPECT_EQ(clamp("/tmp/l", noAccess, files), "/tmp/l");
  files.resolved[liveData + "/link"] = "/elsewhere";
  EXPECT_EQ(clamp(liveData + "/link", noAccess, files), isolated + "/link");
}

TEST_F(ClampOnFilesTest, APathIntoTheLiveDataByTextIsSentAwayWhereverItLeads) {
  files.resolved[liveData] = "/elsewhere";
  EXPECT_EQ(clamp(liveData + "/db", noAccess, files), isolated + "/db");
}

TEST_F(ClampOnFilesTest, TheRootIsItsOwnParent) {
  EXPECT_EQ(clamp("/", noAccess, files), "/");
  EXPECT_EQ(clampedPath("/", files).viaParent, "/");
}

}  // namespace
}  // namespace tamo::LiveDataGuard

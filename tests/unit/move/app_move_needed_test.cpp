#include <gtest/gtest.h>
#include <vector>

#include "fakes/fake_files.hpp"
#include "move/app_move.hpp"
#include "unit/move/info_files.hpp"

/// Which copies have to move, by their values and by their files.
namespace tamo::AppMove {
namespace {

using namespace std::string_literals;
using Texts = std::vector<std::string>;

const std::string staged = "/Users/u/Library/Application Support/Tamo/staged/Tamo.app";
const std::string downloads = "/Users/u/Downloads/Tamo.app";
const std::string installed = "/Applications/Tamo.app";

struct PlaceRow {
  std::string path;
  std::string resolved;
  bool moves;
};

TEST(NeededTest, BothThePathAndWhereItLeadsHaveToBelong) {
  const std::vector<PlaceRow> table{
      {staged, "/Volumes/X/Tamo.app", true},
      {staged, installed, true},
      {installed, staged, true},
      {downloads, installed, true},
      {downloads, staged, true},
      {"/Users/v/Library/Application Support/Tamo/staged/Tamo.app",
       "/Users/v/Library/Application Support/Tamo/staged/Tamo.app", true},
      {"/Users/u/Applications/Tamo.app", "/Users/u/Applications/Tamo.app", true},
      {installed, installed, false},
      {staged, staged, false},
  };
  for (const auto& row : table) {
    EXPECT_EQ(needed({.appPath = row.path,
                      .resolvedPath = row.resolved,
                      .bundleID = "studio.pell.Tamo",
                      .home = "/Users/u"}),
              row.moves)
        << row.path << " to " << row.resolved;
  }
}

TEST(NeededTest, AnIdentifierThatIsOnlyLikeTheReleasesNeverMoves) {
  for (const auto& identifier :
       {" studio.pell.Tamo"s, "studio.pell.Tamo "s, "studio.pell.Tamo\n"s, "studio.pell.Tamo\0"s,
        "STUDIO.PELL.TAMO"s, "studio.pell.Tamo.app"s, "studio.pell.Tam"s, "studio.pell.Tam\u00F3"s}) {
    EXPECT_FALSE(
        needed({.appPath = downloads, .resolvedPath = downloads, .bundleID = identifier, .home = "/Users/u"}))
        << identifier;
  }
}

class NeededOnFilesTest : public ::testing::Test {
 protected:
  void place(const std::string& path, const std::string& identifier) {
    files.contents[path + "/Contents/Info.plist"] = infoWith(identifierEntry(identifier));
  }

  const std::string helper = "/Contents/Library/LoginItems/Tamo Core.app";
  fakes::Ledger ledger;
  fakes::FakeClock clock{ledger};
  fakes::FakeFiles files{ledger, clock};
};

TEST_F(NeededOnFilesTest, TheApplicationAroundAHelperIsJudgedByItsOwnIdentifier) {
  place(downloads, "studio.pell.Tamo");
  place(downloads + helper, "studio.pell.Tamo.Core");
  EXPECT_TRUE(needed(downloads + helper, "/Users/u", files));
  place(downloads, "com.example.other");
  place(downloads + helper, "studio.pell.Tamo");
  EXPECT_FALSE(needed(downloads + helper, "/Users/u", files));
}

TEST_F(NeededOnFilesTest, TheHomeThatIsHandedInTellsTheStagedCopy) {
  place(staged, "studio.pell.Tamo");
  EXPECT_FALSE(needed(staged, "/Users/u", files));
  EXPECT_FALSE(needed(staged, "/Users/u/", files));
  EXPECT_TRUE(needed(staged, "/Users/v", files));
}

TEST_F(NeededOnFilesTest, LinksAreResolvedForTheComparisonAlone) {
  place(installed, "studio.pell.Tamo");
  files.resolved[installed] = "/Volumes/X/Tamo.app";
  EXPECT_TRUE(needed(installed, "/Users/u", files));
  EXPECT_EQ(ledger.texts(), Texts{"files: read " + installed + "/Contents/Info.plist"});
}

TEST_F(NeededOnFilesTest, ALinkToTheInstalledCopyMoves) {
  place(downloads, "studio.pell.Tamo");
  files.resolved[downloads] = installed;
  EXPECT_TRUE(needed(downloads, "/Users/u", files));
}

TEST_F(NeededOnFilesTest, ABinaryInfoFileIsReadLikeAnyOther) {
  files.contents[downloads + "/Contents/Info.plist"] = binaryInfo("studio.pell.Tamo", "42");
  EXPECT_TRUE(needed(downloads, "/Users/u", files));
}

TEST_F(NeededOnFilesTest, ABundleThatDeclaresNoTextForItsIdentifierNeverMoves) {
  for (const auto* entries :
       {"", "<key>CFBundleIdentifier</key><integer>1</integer>",
        "<key>CFBundleName</key><string>studio.pell.Tamo</string>",
        "<key>Inner</key><dict><key>CFBundleIdentifier</key><string>studio.pell.Tamo</string></dict>"}) {
    files.contents[downloads + "/Contents/Info.plist"] = infoWith(entries);
    EXPECT_FALSE(needed(downloads, "/Users/u", files)) << entries;
  }
}

TEST_F(NeededOnFilesTest, WhetherACopyMovesIsAskedAfreshEachTime) {
  place(downloads, "studio.pell.Tamo");
  EXPECT_TRUE(needed(downloads, "/Users/u", files));
  place(downloads, "studio.pell.Tamo.dev");
  EXPECT_FALSE(needed(downloads, "/Users/u", files));
}

}  // namespace
}  // namespace tamo::AppMove

#include "app/data_directory.hpp"

#include <gtest/gtest.h>

#include "fakes/fake_surroundings.hpp"

namespace tamo {
namespace {

class DataDirectoryTest : public ::testing::Test {
 protected:
  fakes::FakeUser user;
};

TEST_F(DataDirectoryTest, LiesInTheHomeOfThePasswordEntry) {
  EXPECT_EQ(dataDirectory(user, {}), "/Users/u/Library/Application Support/Tamo/");
}

TEST_F(DataDirectoryTest, AProofHomeReplacesTheRealHome) {
  EXPECT_EQ(dataDirectory(user, {.proofHome = "/tmp/x"}), "/tmp/x/Library/Application Support/Tamo/");
}

TEST_F(DataDirectoryTest, AProofHomeWithASlashAtItsEndGivesADoubleSlash) {
  EXPECT_EQ(dataDirectory(user, {.proofHome = "/tmp/x/"}), "/tmp/x//Library/Application Support/Tamo/");
}

TEST_F(DataDirectoryTest, IsAbsentWithoutAPasswordEntryAlsoWithAProofHome) {
  user.entry.reset();
  EXPECT_EQ(dataDirectory(user, {}), std::nullopt);
  EXPECT_EQ(dataDirectory(user, {.proofHome = "/tmp/x"}), std::nullopt);
}

TEST_F(DataDirectoryTest, AnEntryWithoutAHomeIsFatal) {
  user.entry->home.reset();
  EXPECT_DEATH(static_cast<void>(dataDirectory(user, {})),
               "fatal: the user's password entry has no home directory");
}

/// The substitute stands in for the field, not for the entry.
TEST_F(DataDirectoryTest, AProofHomeTakesThePlaceOfAHomeThatIsMissing) {
  user.entry->home.reset();
  EXPECT_EQ(dataDirectory(user, {.proofHome = "/tmp/x"}), "/tmp/x/Library/Application Support/Tamo/");
}

TEST_F(DataDirectoryTest, AnEmptyProofHomeIsPresentAndAnEmptyHomeAHome) {
  EXPECT_EQ(dataDirectory(user, {.proofHome = ""}), "/Library/Application Support/Tamo/");
  user.entry->home = "";
  EXPECT_EQ(dataDirectory(user, {}), "/Library/Application Support/Tamo/");
  EXPECT_EQ(passwordHome(user), "");
}

TEST_F(DataDirectoryTest, NothingIsTidiedInAHome) {
  user.entry->home = "~/a//b/../É/";
  EXPECT_EQ(dataDirectory(user, {}), "~/a//b/../É//Library/Application Support/Tamo/");
  EXPECT_EQ(passwordHome(user), "~/a//b/../É/");
}

TEST_F(DataDirectoryTest, TheEntryIsAskedForAnewEachTime) {
  EXPECT_EQ(dataDirectory(user, {}), "/Users/u/Library/Application Support/Tamo/");
  user.entry->home = "/Users/v";
  EXPECT_EQ(dataDirectory(user, {}), "/Users/v/Library/Application Support/Tamo/");
}

TEST_F(DataDirectoryTest, ThePasswordHomeKnowsNoWayAround) {
  EXPECT_EQ(passwordHome(user), "/Users/u");
  user.entry->home.reset();
  EXPECT_DEATH(static_cast<void>(passwordHome(user)),
               "fatal: the user's password entry has no home directory");
  user.entry.reset();
  EXPECT_DEATH(static_cast<void>(passwordHome(user)), "fatal: the user has no password entry");
}

}  // namespace
}  // namespace tamo

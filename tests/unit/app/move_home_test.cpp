#include <gtest/gtest.h>

#include "companion.hpp"

namespace tamo {
namespace {

using Texts = std::vector<std::string>;

/// A build that was given a home for its tests moves by the user's own home all the same.
class MoveHomeTest : public ::testing::Test {
 protected:
  MoveHomeTest() {
    companion.config.proofHome = "/tmp/proof";
    companion.toolsMove();
  }
  void runsFrom(const std::string& path) {
    companion.bundle(path, "studio.pell.Tamo");
    companion.fakes.bundles.mainBundle = path + "/Contents/Library/LoginItems/Tamo Core.app";
  }

  Companion companion;
};

TEST_F(MoveHomeTest, TheResultLiesInTheUsersOwnHome) {
  runsFrom("/Users/u/Downloads/Tamo.app");
  companion.act("move-to-applications");
  EXPECT_EQ(companion.fakes.ledger.textsOf({"files: write", "files: create"}),
            (Texts{"files: create directories /Users/u/Library/Containers/studio.pell.Tamo/Data/Library/"
                   "Application Support/Tamo",
                   "files: write /Users/u/Library/Containers/studio.pell.Tamo/Data/Library/Application "
                   "Support/Tamo/move-to-applications.json"}));
}

TEST_F(MoveHomeTest, TheStagedCopyIsThatOfTheUsersOwnHome) {
  runsFrom("/Users/u/Library/Application Support/Tamo/staged/Tamo.app");
  companion.act("move-to-applications");
  EXPECT_EQ(companion.logLines(), Texts{"log: error move refused: this Tamo doesn't need moving"});
}

TEST_F(MoveHomeTest, ACopyStagedInTheOtherHomeMoves) {
  runsFrom("/tmp/proof/Library/Application Support/Tamo/staged/Tamo.app");
  companion.act("move-to-applications");
  EXPECT_EQ(companion.logLines(), Texts{"log: default move-to-applications -> moved"});
}

}  // namespace
}  // namespace tamo

#include <gtest/gtest.h>

#include "companion.hpp"

namespace tamo {
namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

/// What the dispatch does around the move. The move itself has tests of its own.
class MoveRouteTest : public ::testing::Test {
 protected:
  MoveRouteTest() {
    companion.fakes.bundles.mainBundle = downloads + "/Contents/Library/LoginItems/Tamo Core.app";
    companion.bundle(downloads, "studio.pell.Tamo");
    companion.toolsMove();
    // A move leaves no receipt even where they are written.
    companion.config.writesReceipts = true;
  }
  [[nodiscard]] Texts frame() const {
    return companion.fakes.ledger.textsOf(
        {"lock: ", "service: ", "log: ", "application: ", "files: write /Users", "workspace: open"});
  }

  const std::string downloads = "/Users/u/Downloads/Tamo.app";
  const std::string lockPath = "lock: open /tmp/of-the-user/studio.pell.tamo.core.job.lock";
  const std::string writesResult =
      "files: write /Users/u/Library/Containers/studio.pell.Tamo/Data/Library/Application Support/Tamo/"
      "move-to-applications.json";
  const std::string moved = "log: default move-to-applications -> moved";
  const std::string opens = "workspace: open /Applications/Tamo.app";
  Companion companion;
};

TEST_F(MoveRouteTest, TheMoveIsLockedAndUnlockedAfterTheTerminateRequest) {
  companion.act("move-to-applications");
  EXPECT_EQ(frame(), (Texts{lockPath, "lock: try", moved, writesResult, opens, "application: terminate",
                            "lock: unlock 7", "lock: close 7"}));
}

TEST_F(MoveRouteTest, WithoutTheLockTheMoveGoesOnAndNothingIsUnlocked) {
  companion.fakes.lockFiles.opens = false;
  companion.act("move-to-applications");
  EXPECT_EQ(frame(), (Texts{lockPath, moved, writesResult, opens, "application: terminate"}));
}

TEST_F(MoveRouteTest, AFailedMoveTerminatesAndUnlocksAllTheSame) {
  companion.fakes.processes.once({"/usr/bin/ditto"}, {.status = 1});
  companion.act("move-to-applications");
  EXPECT_EQ(frame(), (Texts{lockPath, "lock: try", "log: default move-to-applications -> copy_failed",
                            writesResult, "application: terminate", "lock: unlock 7", "lock: close 7"}));
}

TEST_F(MoveRouteTest, AnInstalledCopyThatIsAskedToMoveRefuses) {
  companion.fakes.bundles.mainBundle = "/Applications/Tamo.app/Contents/Library/LoginItems/Tamo Core.app";
  companion.act("move-to-applications");
  EXPECT_EQ(frame(), (Texts{lockPath, "lock: try", "log: error move refused: this Tamo doesn't need moving",
                            "application: terminate", "lock: unlock 7", "lock: close 7"}));
}

/// The guard is not asked: this copy would not be allowed any other action.
TEST_F(MoveRouteTest, ACopyThatMayNotActAndNeedNotMoveIsRefusedByTheMoveAlone) {
  companion.bundle(downloads, "studio.pell.Tamo.debug");
  companion.act("move-to-applications");
  EXPECT_EQ(companion.logLines(), Texts{"log: error move refused: this Tamo doesn't need moving"});
}

TEST_F(MoveRouteTest, AProofHomePlaysNoPartInTheMove) {
  companion.config.proofHome = "/proof";
  companion.act("move-to-applications");
  EXPECT_EQ(frame(), (Texts{lockPath, "lock: try", moved, writesResult, opens, "application: terminate",
                            "lock: unlock 7", "lock: close 7"}));
}

TEST_F(MoveRouteTest, TheLockIsHeldAndNothingTerminatedWhileTheMoveWaits) {
  companion.fakes.workspace.running = {{"studio.pell.Tamo", downloads}};
  bool heldAfterFiveSeconds = false;
  companion.fakes.clock.at(5s, [&] {
    heldAfterFiveSeconds = companion.fakes.lockFiles.held;
    EXPECT_EQ(companion.fakes.ledger.count("application: "), 0U);
    companion.fakes.workspace.running.clear();
  });
  companion.act("move-to-applications");
  EXPECT_TRUE(heldAfterFiveSeconds);
  EXPECT_FALSE(companion.fakes.lockFiles.held);
  EXPECT_EQ(companion.fakes.ledger.count("application: terminate"), 1U);
}

TEST_F(MoveRouteTest, AUrlThatComesWhileTheMoveWaitsChangesNothing) {
  companion.fakes.workspace.running = {{"studio.pell.Tamo", downloads}};
  CoreDelegate delegate(companion.fakes.platform, companion.config,
                        {"/program", "--core-action", "move-to-applications"});
  companion.fakes.clock.at(5s, [&] { delegate.application({"tamo-core://unregister"}); });
  delegate.applicationDidFinishLaunching();
  companion.fakes.mainQueue.runUntilIdle();
  EXPECT_EQ(companion.logLines(), Texts{moved});
  EXPECT_EQ(companion.fakes.ledger.count("application: terminate"), 1U);
}

TEST_F(MoveRouteTest, TheNameIsComparedWithCase) {
  companion.config.proofHome = "/tmp/x";
  companion.config.writesReceipts = false;
  companion.act("Move-to-applications");
  EXPECT_EQ(companion.logLines(), Texts{"log: default Move-to-applications -> status 1 ok Optional(false) "
                                        "error TamoCore 64<private: Unknown action>"});
}

}  // namespace
}  // namespace tamo

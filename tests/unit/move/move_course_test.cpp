#include <gtest/gtest.h>

#include "unit/move/move_rig.hpp"

/// Whole moves by everything that they asked, changed and said: what is not listed was not done.
namespace tamo {
namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

Texts operator+(Texts left, const Texts& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

class MoveCourseTest : public ::testing::Test {
 protected:
  static Texts runOf(const std::string& tool, const std::string& words) {
    return {"tool: " + tool + " " + words, "tool: read errors " + tool, "tool: wait " + tool};
  }
  static Texts recorded(const std::string& code) {
    return {"log: default move-to-applications -> " + code, "files: create directories " + MoveRig::container,
            "files: write " + MoveRig::resultFile};
  }
  [[nodiscard]] Texts course() {
    EXPECT_TRUE(rig.move());
    auto texts = rig.ledger.texts();
    for (auto& text : texts)
      if (text.starts_with("tool: /usr/bin/osascript")) text = "tool: /usr/bin/osascript SCRIPT";
    return texts;
  }

  static inline const std::string app = MoveRig::installed;
  static inline const std::string readsSource = "files: read " + MoveRig::downloads + "/Contents/Info.plist";
  static inline const std::string readsInstalled = "files: read " + app + "/Contents/Info.plist";
  /// Whether it moves, by which identifier, and what is there already.
  const Texts looks{readsSource, readsSource, "files: exists " + app, readsSource};
  const Texts ditto = runOf("/usr/bin/ditto", MoveRig::downloads + " " + app);
  const Texts xattr = runOf("/usr/bin/xattr", "-dr com.apple.quarantine " + app);
  const Texts trashesSource{"user files: trash " + MoveRig::downloads};
  const Texts trashesInstalled{"user files: trash " + app};
  const Texts clears{"files: remove " + app};
  const Texts asksForRights{"user files: writable /Applications"};
  const Texts opens{"workspace: list", "workspace: open " + app};
  MoveRig rig;
};

TEST_F(MoveCourseTest, OfACopyWhereNothingIs) {
  EXPECT_EQ(course(), looks + ditto + xattr + trashesSource + recorded("moved") + opens);
}

TEST_F(MoveCourseTest, OfACopyInPlaceOfAnOlderOne) {
  rig.place(app, "41");
  EXPECT_EQ(course(), looks + Texts{readsInstalled} + trashesInstalled + ditto + xattr + trashesSource +
                          recorded("moved") + opens);
}

TEST_F(MoveCourseTest, OfACopyThatOnlyOpensTheInstalledOne) {
  rig.place(app, "42");
  EXPECT_EQ(course(), looks + Texts{readsInstalled} + recorded("opened") + opens);
}

TEST_F(MoveCourseTest, OfAnOlderOneThatTheTrashRefuses) {
  rig.place(app, "41");
  rig.userFiles.untrashable.insert(app);
  EXPECT_EQ(course(), looks + Texts{readsInstalled} + trashesInstalled + recorded("not_writable"));
}

TEST_F(MoveCourseTest, OfACopyThatFails) {
  rig.dittoFails();
  EXPECT_EQ(course(), looks + ditto + clears + asksForRights + recorded("copy_failed"));
}

TEST_F(MoveCourseTest, OfTheAdministratorsCopy) {
  rig.applicationsIsProtected();
  rig.administratorSays(0);
  EXPECT_EQ(course(), looks + ditto + clears + asksForRights + runOf("/usr/bin/osascript", "SCRIPT") +
                          trashesSource + recorded("moved") + opens);
}

TEST_F(MoveCourseTest, OfAPromptThatWasClosed) {
  rig.applicationsIsProtected();
  rig.administratorSays(1, "(-128)");
  EXPECT_EQ(course(), looks + ditto + clears + asksForRights + runOf("/usr/bin/osascript", "SCRIPT") +
                          clears + recorded("cancelled"));
}

TEST_F(MoveCourseTest, OfACopyThatNeedNotMove) {
  rig.runsFrom(app);
  EXPECT_EQ(course(), (Texts{readsInstalled, "log: error move refused: this Tamo doesn't need moving"}));
}

TEST_F(MoveCourseTest, OfACopyThatRunsAsTheApplicationItself) {
  rig.bundles.mainBundle = MoveRig::downloads;
  EXPECT_EQ(course(), looks + ditto + xattr + trashesSource + recorded("moved") + opens);
}

TEST_F(MoveCourseTest, OfACopyWhosePathWasLaunchedWithDetours) {
  rig.bundles.mainBundle =
      "/Users/u/./Music/../Downloads//Tamo.app/Contents/Library/LoginItems/Tamo Core.app/";
  EXPECT_EQ(course(), looks + ditto + xattr + trashesSource + recorded("moved") + opens);
}

/// A link is moved by its own name; where it leads only tells whether a move is needed.
TEST_F(MoveCourseTest, OfACopyBehindALink) {
  rig.files.resolved[MoveRig::downloads] = "/Volumes/X/Tamo.app";
  EXPECT_EQ(course(), looks + ditto + xattr + trashesSource + recorded("moved") + opens);
}

/// What the loop of the main thread had to do first waits until the result is there.
TEST_F(MoveCourseTest, UpToTheFirstLookNothingElseHasATurn) {
  rig.applicationsIsProtected();
  rig.administratorSays(0);
  rig.runs(MoveRig::downloads);
  std::string resultAtTheTurn = "no turn yet";
  rig.mainQueue.post([&] { resultAtTheTurn = rig.result(); });
  rig.task.emplace(rig.mover.moveToApplications());
  rig.task->start();
  EXPECT_EQ(resultAtTheTurn, "no turn yet");
  rig.mainQueue.runPosted();
  EXPECT_EQ(resultAtTheTurn, R"({"ok":true,"code":"moved"})");
  EXPECT_EQ(rig.ledger.count("workspace: open"), 0U);
  rig.quitsAt(0s);
  rig.mainQueue.runUntilIdle();
  EXPECT_TRUE(rig.task->done());
}

/// Nothing of a move is kept for the next one that the same object makes.
class SecondMoveTest : public MoveCourseTest {
 protected:
  Texts secondCourse() {
    rig.ledger.clear();
    return course();
  }
};

TEST_F(SecondMoveTest, WhatIsInstalledIsLookedAtAnew) {
  rig.dittoFails();
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(secondCourse(), looks + ditto + xattr + trashesSource + recorded("moved") + opens);
  rig.runsFrom(MoveRig::downloads);
  EXPECT_EQ(secondCourse(), looks + Texts{readsInstalled} + recorded("opened") + opens);
}

TEST_F(SecondMoveTest, TheCopyItsIdentifierAndItsBuildAreReadAnew) {
  rig.place(app, "41");
  rig.place(MoveRig::downloads, "40");
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(rig.result(), R"({"ok":true,"code":"opened"})");
  rig.place(MoveRig::downloads, "42", "studio.pell.Tamo.dev");
  EXPECT_EQ(secondCourse(), (Texts{readsSource, "log: error move refused: this Tamo doesn't need moving"}));
  rig.place(MoveRig::downloads, "42");
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(rig.result(), R"({"ok":true,"code":"moved"})");
}

TEST_F(SecondMoveTest, TheHomeIsAskedForAnew) {
  rig.place(app, "42");
  EXPECT_TRUE(rig.move());
  rig.user.entry = platform::PasswordEntry{"/Users/v"};
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(rig.ledger.count("files: write /Users/v/Library/Containers/studio.pell.Tamo/Data/"), 1U);
}

TEST_F(SecondMoveTest, TheThirtySecondsBeginAnew) {
  rig.place(app, "42");
  rig.runs(MoveRig::downloads);
  EXPECT_TRUE(rig.move());
  rig.ledger.clear();
  EXPECT_TRUE(rig.move());
  EXPECT_EQ(rig.openedAt(), 60s);
}

}  // namespace
}  // namespace tamo

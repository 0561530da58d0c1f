#include "move/bundle_copy.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "unit/launch/launch_rig.hpp"

namespace tamo {
namespace {

using ::testing::ElementsAre;
using Texts = std::vector<std::string>;

const std::string source = "/Users/u/Downloads/Tamo.app";
const std::string target = "/Applications/Tamo.app";
const std::string script =
    "do shell script (\"/usr/bin/ditto \" & quoted form of item 1 of argv & \" \" & quoted form of item 2 of "
    "argv & \" && /usr/bin/xattr -dr com.apple.quarantine \" & quoted form of item 2 of argv) with prompt "
    "\"Tamo wants to move itself into your Applications folder.\" with administrator privileges";

const std::string ditto = "tool: /usr/bin/ditto " + source + " " + target;
const std::string xattr = "tool: /usr/bin/xattr -dr com.apple.quarantine " + target;
const std::string osascript =
    "tool: /usr/bin/osascript -e on run argv -e " + script + " -e end run " + source + " " + target;
const std::string remove = "files: remove " + target;
const std::string asksForRights = "user files: writable /Applications";

/// Tools that work, where a test has not arranged otherwise, and a destination that the user may not write to.
class BundleCopyTest : public ::testing::Test {
 protected:
  BundleCopyTest() {
    fake.userFiles.unwritable.insert("/Applications");
    fake.processes.always({"/usr/bin/ditto"}, {});
    fake.processes.always({"/usr/bin/xattr"}, {});
    fake.processes.always({"/usr/bin/osascript"}, {});
  }
  void dittoGives(fakes::ToolScript outcome) { fake.processes.once({"/usr/bin/ditto"}, std::move(outcome)); }
  void administratorGives(fakes::ToolScript outcome) {
    fake.processes.once({"/usr/bin/osascript"}, std::move(outcome));
  }
  std::string copied() { return std::string(bundleCopy.copy(source, target)); }
  /// The copy by the administrator after a plain one that failed.
  std::string copiedAfterAdministrator(fakes::ToolScript outcome) {
    dittoGives({.status = 1});
    administratorGives(std::move(outcome));
    return copied();
  }
  [[nodiscard]] Texts effects() const {
    return fake.ledger.textsOf({"tool: /", "files: remove", "user files: "});
  }

  fakes::FakePlatform fake;
  BundleCopy bundleCopy{
      {.runner = ProcessRunner(fake.processes), .files = fake.files, .userFiles = fake.userFiles}};
};

TEST_F(BundleCopyTest, APlainCopyIsClearedOfItsDownloadMark) {
  EXPECT_EQ(copied(), "moved");
  EXPECT_EQ(effects(), (Texts{ditto, xattr}));
}

TEST_F(BundleCopyTest, AMarkThatStaysDoesNotSpoilAPlainCopy) {
  for (const auto& outcome : {fakes::ToolScript{.status = 1}, fakes::ToolScript{.starts = false}}) {
    fake.processes.once({"/usr/bin/xattr"}, outcome);
    EXPECT_EQ(copied(), "moved");
  }
  EXPECT_EQ(effects(), (Texts{ditto, xattr, ditto, xattr}));
}

TEST_F(BundleCopyTest, WhatAPlainCopyComplainedAboutOnItsWayDoesNotSpoilIt) {
  dittoGives({.status = 0, .errors = "ditto: /x: Operation not permitted -128\n"});
  EXPECT_EQ(copied(), "moved");
  EXPECT_EQ(effects(), (Texts{ditto, xattr}));
}

TEST_F(BundleCopyTest, AFailureInAFolderOfTheUsersOwnDoesNotAskTheAdministrator) {
  fake.userFiles.unwritable.clear();
  for (const auto& outcome :
       {fakes::ToolScript{.status = 1}, fakes::ToolScript{.status = 9}, fakes::ToolScript{.status = 126},
        fakes::ToolScript{.status = 127}, fakes::ToolScript{.status = 255}, fakes::ToolScript{.status = 256},
        fakes::ToolScript{.status = -1}, fakes::ToolScript{.starts = false}}) {
    fake.ledger.clear();
    dittoGives(outcome);
    EXPECT_EQ(copied(), "copy_failed");
    EXPECT_EQ(effects(), (Texts{ditto, remove, asksForRights}));
  }
}

TEST_F(BundleCopyTest, TheRightsAreThoseOverTheFolderOfTheDestination) {
  fake.userFiles.unwritable = {"/somewhere/else", target, "/"};
  dittoGives({.status = 1});
  EXPECT_EQ(bundleCopy.copy(source, "/somewhere/of mine/Tamo.app"), "copy_failed");
  EXPECT_EQ(fake.ledger.count("user files: writable /somewhere/of mine"), 1U);
}

TEST_F(BundleCopyTest, WithoutRightsTheAdministratorCopiesAndClearsTheMark) {
  EXPECT_EQ(copiedAfterAdministrator({.status = 0}), "moved");
  EXPECT_EQ(effects(), (Texts{ditto, remove, asksForRights, osascript}));
}

TEST_F(BundleCopyTest, WithoutRightsAToolThatDoesNotEvenStartIsAFailureLikeAnyOther) {
  dittoGives({.starts = false});
  EXPECT_EQ(copied(), "moved");
  EXPECT_EQ(effects(), (Texts{ditto, remove, asksForRights, osascript}));
}

TEST_F(BundleCopyTest, AFailureOfTheAdministratorIsCleanedUpAgain) {
  EXPECT_EQ(copiedAfterAdministrator({.status = 1}), "not_writable");
  EXPECT_EQ(effects(), (Texts{ditto, remove, asksForRights, osascript, remove}));
}

struct PromptRow {
  fakes::ToolScript outcome;
  std::string code;
};

TEST_F(BundleCopyTest, OnlyAPromptThatWasClosedIsACancellation) {
  const std::vector<PromptRow> table{
      {{.status = 1, .errors = "0:235: execution error: User canceled. (-128)\n"}, "cancelled"},
      {{.status = 1, .errors = "-128"}, "cancelled"},
      {{.status = -1, .errors = "-128"}, "cancelled"},
      {{.status = 1, .errors = "execution error: the number is -1284"}, "cancelled"},
      {{.status = 1, .errors = "execution error: (128)"}, "not_writable"},
      {{.status = 1, .errors = "execution error: ditto: no space left (1)"}, "not_writable"},
      {{.status = 1, .errors = "execution error: (\u2212128)"}, "not_writable"},
      {{.status = 1, .errors = "execution error: (- 128)"}, "not_writable"},
      {{.status = 1, .errors = "User canceled."}, "not_writable"},
      {{.status = 1, .output = "-128"}, "not_writable"},
      {{.status = 126, .errors = "-128"}, "cancelled"},
      {{.status = 255, .errors = "execution error:\n(-128)\nmore"}, "cancelled"},
      {{.status = 127}, "not_writable"},
      {{.status = 128}, "not_writable"},
      {{.status = 255}, "not_writable"},
      {{.status = -128}, "not_writable"},
      {{.status = 1}, "not_writable"},
      {{.starts = false, .errors = "-128"}, "not_writable"},
      {{.status = 1, .errors = std::string(4092, ' ') + "-128"}, "cancelled"},
      {{.status = 1, .errors = std::string(4093, ' ') + "-128"}, "not_writable"},
      {{.status = 0, .errors = "-128"}, "moved"},
  };
  for (const auto& row : table) {
    EXPECT_EQ(copiedAfterAdministrator(row.outcome), row.code) << row.outcome.errors;
  }
}

TEST_F(BundleCopyTest, WhatThePlainCopyComplainedAboutIsNoCancellation) {
  dittoGives({.status = 1, .errors = "ditto: error -128"});
  administratorGives({.status = 1});
  EXPECT_EQ(copied(), "not_writable");
}

TEST_F(BundleCopyTest, ThePlainCopysComplaintIsNoCancellationWhereTheAdministratorsToolDoesNotStart) {
  dittoGives({.status = 1, .errors = "ditto: error -128"});
  administratorGives({.starts = false});
  EXPECT_EQ(copied(), "not_writable");
  EXPECT_EQ(effects(), (Texts{ditto, remove, asksForRights, osascript, remove}));
}

TEST_F(BundleCopyTest, ACopyThatWasTurnedDownLeavesNothingForTheNextOne) {
  EXPECT_EQ(copiedAfterAdministrator({.status = 1, .errors = "-128"}), "cancelled");
  EXPECT_EQ(copiedAfterAdministrator({.starts = false}), "not_writable");
  fake.userFiles.unwritable.clear();
  fake.ledger.clear();
  EXPECT_EQ(copied(), "moved");
  EXPECT_EQ(effects(), (Texts{ditto, xattr}));
}

TEST_F(BundleCopyTest, ARemovalThatFailsChangesNoCode) {
  fake.files.failsToRemove = true;
  EXPECT_EQ(copiedAfterAdministrator({.status = 0}), "moved");
  EXPECT_EQ(copiedAfterAdministrator({.status = 1}), "not_writable");
  EXPECT_EQ(copiedAfterAdministrator({.status = 1, .errors = "-128"}), "cancelled");
  fake.userFiles.unwritable.clear();
  dittoGives({.status = 1});
  EXPECT_EQ(copied(), "copy_failed");
}

TEST_F(BundleCopyTest, NothingIsLeftOfACopyThatFailedHalfway) {
  const auto half = [this] { fake.files.contents[target] = "half a bundle"; };
  const auto isGone = [this] { return !fake.files.contents.contains(target); };
  dittoGives({.status = 1, .effect = half});
  bool goneBeforeThePrompt = false;
  administratorGives({.status = 1, .effect = [&] {
                        goneBeforeThePrompt = isGone();
                        half();
                      }});
  EXPECT_EQ(copied(), "not_writable");
  EXPECT_TRUE(goneBeforeThePrompt);
  EXPECT_TRUE(isGone());
}

TEST_F(BundleCopyTest, ThePromptMayStandForHours) {
  EXPECT_EQ(copiedAfterAdministrator({.runsFor = std::chrono::hours(3)}), "moved");
  EXPECT_EQ(fake.clock.monotonicNow(), std::chrono::hours(3));
}

TEST_F(BundleCopyTest, ThePlainToolsMayTakeHoursAsWell) {
  dittoGives({.runsFor = std::chrono::hours(2)});
  fake.processes.once({"/usr/bin/xattr"}, {.runsFor = std::chrono::hours(1)});
  EXPECT_EQ(copied(), "moved");
  EXPECT_EQ(fake.clock.monotonicNow(), std::chrono::hours(3));
  EXPECT_EQ(fake.ledger.count("tool: terminate") + fake.ledger.count("clock: sleep"), 0U);
}

/// Whatever a folder is called, the script stays the same text and the names stay arguments of their own.
TEST_F(BundleCopyTest, PathsAreArgumentsAndNeverPartOfTheScript) {
  KeepsLaunches processes(fake.processes);
  BundleCopy watched({.runner = ProcessRunner(processes), .files = fake.files, .userFiles = fake.userFiles});
  const std::string odd = "/Users/u/a 'b' \"c\" $(d) \\e;\n\u00E9/Tamo.app";
  dittoGives({.status = 1});
  EXPECT_EQ(watched.copy(odd, target), "moved");
  ASSERT_EQ(processes.launches.size(), 2U);
  EXPECT_THAT(processes.launches[0].arguments, ElementsAre(odd, target));
  EXPECT_EQ(processes.launches[1].path, "/usr/bin/osascript");
  EXPECT_THAT(processes.launches[1].arguments,
              ElementsAre("-e", "on run argv", "-e", script, "-e", "end run", odd, target));
}

TEST_F(BundleCopyTest, ADestinationOfTwoWordsIsOneArgumentOfEveryTool) {
  KeepsLaunches processes(fake.processes);
  BundleCopy watched({.runner = ProcessRunner(processes), .files = fake.files, .userFiles = fake.userFiles});
  const std::string odd = "/My Applications/-r Tamo.app";
  EXPECT_EQ(watched.copy(source, odd), "moved");
  ASSERT_EQ(processes.launches.size(), 2U);
  EXPECT_THAT(processes.launches[0].arguments, ElementsAre(source, odd));
  EXPECT_EQ(processes.launches[1].path, "/usr/bin/xattr");
  EXPECT_THAT(processes.launches[1].arguments, ElementsAre("-dr", "com.apple.quarantine", odd));
}

/// The tools' output goes nowhere, and what they complain about is kept to the companion.
TEST_F(BundleCopyTest, EveryToolHasItsErrorsReadAndItsOutputDropped) {
  KeepsLaunches processes(fake.processes);
  BundleCopy watched({.runner = ProcessRunner(processes), .files = fake.files, .userFiles = fake.userFiles});
  EXPECT_EQ(watched.copy(source, target), "moved");
  dittoGives({.status = 1});
  EXPECT_EQ(watched.copy(source, target), "moved");
  ASSERT_EQ(processes.launches.size(), 4U);
  for (const auto& launch : processes.launches) {
    EXPECT_EQ(launch.standardOutput, -1) << launch.path;
    EXPECT_TRUE(launch.capturesErrors) << launch.path;
  }
}

}  // namespace
}  // namespace tamo

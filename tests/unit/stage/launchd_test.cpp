#include "stage/launchd/launchd.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fake_process_control.hpp"
#include "temporary_stage.hpp"

namespace tamo::stage {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class LaunchdTest : public ::testing::Test {
 protected:
  LaunchdTest() {
    stage.write("/core.plist",
                "<plist version=\"1.0\"><dict><key>Label</key><string>core</string><key>Program</key>"
                "<string>/bin/core</string><key>RunAtLoad</key><true/></dict></plist>");
  }

  /// The answer of a question that is answered at once.
  LaunchdAnswer asked(const std::vector<std::string>& words) {
    Answered answer;
    launchd.ask(words, now, answer.reply);
    return answer.answers.size() == 1 ? answer.answers[0] : LaunchdAnswer{.status = -999};
  }

  TemporaryStage stage;
  FakeProcessControl processes;
  Launchd launchd{stage.root, processes};
  JobTable::Time now{};
};

TEST_F(LaunchdTest, AnUnknownServiceIsReportedAsByARealLaunchd) {
  const auto answer = asked({"print", "gui/501/nobody"});
  EXPECT_EQ(answer.status, 113);
  EXPECT_EQ(answer.errors, "Bad request.\nCould not find service \"nobody\" in domain for user gui: 501\n");
}

TEST_F(LaunchdTest, AnUnknownDomainIsReportedAsByARealLaunchd) {
  const auto answer = asked({"print", "gui/99999/core"});
  EXPECT_EQ(answer.status, 112);
  EXPECT_EQ(answer.errors, "Bad request.\nCould not find domain for user gui: 99999\n");
}

TEST_F(LaunchdTest, TheSystemsDomainIsThereAndEmpty) {
  EXPECT_EQ(asked({"print", "system/core"}).status, 113);
}

TEST_F(LaunchdTest, AKickstartOfAnUnknownServiceFails) {
  EXPECT_EQ(asked({"kickstart", "gui/501/nobody"}).status, 113);
  EXPECT_EQ(asked({"kickstart", "-k", "gui/501/nobody"}).status, 113);
}

TEST_F(LaunchdTest, WhatNamesNoTargetIsAWrongUse) {
  for (const auto* text : {"core", "gui/501/core/../..x", "gui"})
    EXPECT_NE(asked({"print", text}).status, 0) << text;
  EXPECT_EQ(asked({"print", "core"}).status, 64);
  EXPECT_EQ(asked({"bootout", "gui/501"}).status, 64);
  EXPECT_EQ(asked({"kickstart", "gui/501"}).status, 64);
}

TEST_F(LaunchdTest, ABootstrappedJobCanBePrinted) {
  EXPECT_EQ(asked({"bootstrap", "gui/501", "/core.plist"}).status, 0);
  const auto answer = asked({"print", "gui/501/core"});
  EXPECT_EQ(answer.status, 0);
  EXPECT_THAT(answer.output, HasSubstr("\tpid = 100\n"));
  EXPECT_THAT(asked({"print", "gui/501"}).output, HasSubstr("\tcore\n"));
}

TEST_F(LaunchdTest, ThePrintStyleIsReadAtEachPrint) {
  static_cast<void>(asked({"bootstrap", "gui/501", "/core.plist"}));
  EXPECT_THAT(asked({"print", "gui/501/core"}).output, HasSubstr("LWCR = {"));
  stage.root.set("print-style", "older");
  EXPECT_THAT(asked({"print", "gui/501/core"}).output, ::testing::Not(HasSubstr("LWCR = {")));
  stage.root.set("print-style", std::nullopt);
  EXPECT_THAT(asked({"print", "gui/501/core"}).output, HasSubstr("LWCR = {"));
}

TEST_F(LaunchdTest, ABootstrapOfWhatIsNoJobFails) {
  stage.write("/broken.plist", "nonsense");
  EXPECT_EQ(asked({"bootstrap", "gui/501", "/broken.plist"}).status, 5);
  EXPECT_EQ(asked({"bootstrap", "gui/501", "/missing.plist"}).status, 5);
  EXPECT_EQ(asked({"bootstrap", "system", "/core.plist"}).status, 125);
}

TEST_F(LaunchdTest, ServiceManagementIsReachedByItsWords) {
  EXPECT_EQ(asked({"service-status", "core.plist"}).output, "0");
  EXPECT_THAT(asked({"service-register", "/None.app", "core.plist"}).output,
              StartsWith("SMAppServiceErrorDomain\t8\t"));
  EXPECT_EQ(asked({"approve"}).status, 0);
}

TEST_F(LaunchdTest, OpeningTheLoginItemsLeavesATrace) {
  static_cast<void>(asked({"open-login-items"}));
  static_cast<void>(asked({"open-login-items"}));
  EXPECT_EQ(stage.read("/.stage/login-items-opened"), "opened\nopened\n");
}

TEST_F(LaunchdTest, WhatIsNoQuestionIsAWrongUse) {
  const std::vector<std::vector<std::string>> wrong = {
      {}, {"frobnicate"}, {"print"}, {"kickstart"}, {"kickstart", "-x", "gui/501/core"}, {"service-status"}};
  for (const auto& words : wrong)
    EXPECT_EQ(asked(words).status, 64);
}

TEST_F(LaunchdTest, AShutdownIsKeptForWhoeverRunsIt) {
  Answered answer;
  launchd.ask({"shutdown"}, now, answer.reply);
  EXPECT_EQ(answer.status(), std::nullopt);
  ASSERT_TRUE(launchd.shutdown());
  (*launchd.shutdown())({});
  EXPECT_EQ(answer.status(), 0);
}

}  // namespace
}  // namespace tamo::stage

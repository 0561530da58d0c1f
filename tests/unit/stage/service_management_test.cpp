#include "stage/launchd/service_management.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fake_process_control.hpp"
#include "temporary_stage.hpp"

namespace tamo::stage {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace std::chrono_literals;

constexpr auto bundle = "/Applications/Core.app";
constexpr auto listName = "core.plist";
constexpr auto listPath = "/Applications/Core.app/Contents/Library/LaunchAgents/core.plist";

std::string listWith(const std::string& more) {
  return "<plist version=\"1.0\"><dict><key>Label</key><string>core</string>"
         "<key>BundleProgram</key><string>Contents/MacOS/core</string>"
         "<key>RunAtLoad</key><true/>" +
         more + "</dict></plist>";
}

class ServiceManagementTest : public ::testing::Test {
 protected:
  ServiceManagementTest() { stage.write(listPath, listWith("")); }

  LaunchdAnswer registered() { return services.registerAgent(bundle, listName, now); }
  std::string status() { return services.status(listName).output; }
  void unregister() {
    services.unregisterAgent(listName, now, answer.reply);
    services.tick(now);
  }
  void end(pid_t pid) {
    jobs.ended(pid, {}, now);
    services.tick(now);
  }

  TemporaryStage stage;
  FakeProcessControl processes;
  JobTable jobs{processes};
  ServiceManagement services{stage.root, jobs};
  JobTable::Time now{1000s};
  Answered answer;
};

TEST_F(ServiceManagementTest, AnAgentThatWasNeverRegisteredHasTheStatusThatTheSettingSays) {
  EXPECT_EQ(status(), "0");
  stage.root.set("never-registered-status", "3");
  EXPECT_EQ(status(), "3");
}

TEST_F(ServiceManagementTest, RegisteringEnablesAndStartsTheAgent) {
  EXPECT_EQ(registered().status, 0);
  EXPECT_EQ(status(), "1");
  ASSERT_NE(jobs.find("core"), nullptr);
  EXPECT_EQ(jobs.find("core")->definition.program, "/Applications/Core.app/Contents/MacOS/core");
}

TEST_F(ServiceManagementTest, RegisteringAnEnabledAgentChangesNothing) {
  static_cast<void>(registered());
  stage.write(listPath, listWith("<key>ExitTimeOut</key><integer>9</integer>"));
  EXPECT_EQ(registered().status, 0);
  EXPECT_EQ(jobs.find("core")->definition.exitTimeout, 5s);
  EXPECT_THAT(processes.ledger, ElementsAre("start core"));
}

TEST_F(ServiceManagementTest, RegisteringAfterUnregisteringReadsTheListAfresh) {
  static_cast<void>(registered());
  unregister();
  end(100);
  stage.write(listPath, listWith("<key>ExitTimeOut</key><integer>9</integer>"));
  EXPECT_EQ(registered().status, 0);
  EXPECT_EQ(jobs.find("core")->definition.exitTimeout, 9s);
}

TEST_F(ServiceManagementTest, WithheldApprovalLeavesTheAgentUnstarted) {
  stage.root.set("approval", "withheld");
  EXPECT_EQ(registered().status, 0);
  EXPECT_EQ(status(), "2");
  EXPECT_THAT(processes.ledger, IsEmpty());
  services.approve(now);
  EXPECT_EQ(status(), "1");
  EXPECT_THAT(processes.ledger, ElementsAre("start core"));
}

TEST_F(ServiceManagementTest, ApprovingWithNothingToApproveDoesNothing) {
  static_cast<void>(registered());
  processes.ledger.clear();
  services.approve(now);
  EXPECT_THAT(processes.ledger, IsEmpty());
}

TEST_F(ServiceManagementTest, AMissingListIsAnErrorAndRegistersNothing) {
  const auto result = services.registerAgent("/Applications/Gone.app", listName, now);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output,
            "SMAppServiceErrorDomain\t8\tThe agent's property list was not found in the bundle");
  EXPECT_EQ(status(), "0");
}

TEST_F(ServiceManagementTest, ABrokenListIsAnotherError) {
  stage.write(listPath, "<plist><dict>");
  EXPECT_THAT(registered().output, ::testing::StartsWith("SMAppServiceErrorDomain\t10\t"));
  EXPECT_EQ(status(), "0");
}

TEST_F(ServiceManagementTest, AnOrderedErrorIsAnsweredOnceInsteadOfRegistering) {
  stage.root.set("next-register-error", "Domain\t-7\tno luck");
  const auto result = registered();
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "Domain\t-7\tno luck");
  EXPECT_EQ(status(), "0");
  EXPECT_EQ(registered().status, 0);
}

TEST_F(ServiceManagementTest, UnregisteringAnswersWhenTheJobIsGone) {
  static_cast<void>(registered());
  processes.ledger.clear();
  unregister();
  EXPECT_THAT(processes.ledger, ElementsAre("terminate 100"));
  EXPECT_EQ(answer.status(), std::nullopt);
  end(100);
  EXPECT_EQ(answer.status(), 0);
  EXPECT_EQ(status(), "0");
}

TEST_F(ServiceManagementTest, ADelayHoldsTheAnswerBack) {
  stage.root.set("unregister-delay", "300");
  static_cast<void>(registered());
  unregister();
  end(100);
  EXPECT_EQ(services.nextDeadline(), now + 300ms);
  services.tick(now + 299ms);
  EXPECT_EQ(answer.status(), std::nullopt);
  services.tick(now + 300ms);
  EXPECT_EQ(answer.status(), 0);
  EXPECT_FALSE(services.nextDeadline());
}

TEST_F(ServiceManagementTest, UnregisteringWhatIsNotRegisteredIsAnError) {
  unregister();
  EXPECT_EQ(answer.status(), 1);
  EXPECT_EQ(answer.answers[0].output, "SMAppServiceErrorDomain\t6\tThe agent isn't registered");
}

TEST_F(ServiceManagementTest, UnregisteringAnAgentThatAwaitsApprovalNeedsNoJob) {
  stage.root.set("approval", "withheld");
  static_cast<void>(registered());
  unregister();
  EXPECT_EQ(answer.status(), 0);
  EXPECT_EQ(status(), "0");
}

TEST_F(ServiceManagementTest, AnOrderedErrorLeavesTheAgentRegistered) {
  static_cast<void>(registered());
  stage.root.set("next-unregister-error", "Domain\t5\tlater");
  unregister();
  EXPECT_EQ(answer.answers.at(0).output, "Domain\t5\tlater");
  EXPECT_EQ(status(), "1");
  EXPECT_TRUE(jobs.find("core")->pid);
}

TEST_F(ServiceManagementTest, AnotherLaunchdLoadsWhatIsEnabled) {
  static_cast<void>(registered());
  FakeProcessControl later;
  JobTable laterJobs(later);
  ServiceManagement laterServices(stage.root, laterJobs);
  laterServices.resume(now);
  EXPECT_THAT(later.ledger, ElementsAre("start core"));
  EXPECT_EQ(laterServices.status(listName).output, "1");
}

}  // namespace
}  // namespace tamo::stage

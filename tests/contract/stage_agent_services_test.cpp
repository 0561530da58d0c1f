#include "platform/stage/stage_agent_services.hpp"

#include <future>
#include <gtest/gtest.h>

#include "contract/fake_launchd.hpp"
#include "contract/temporary_stage.hpp"
#include "fakes/fake_main_queue.hpp"
#include "fakes/fake_surroundings.hpp"
#include "fakes/fake_threads.hpp"
#include "platform/posix/posix_threads.hpp"

namespace tamo::stage {
namespace {

using contract::FakeLaunchd;
using platform::Error;
using Words = std::vector<std::string>;

std::string textOf(const std::optional<Error>& error) {
  return error ? error->domain() + "|" + std::to_string(error->code()) + "|" + error->description() : "none";
}

class StageAgentServicesTest : public ::testing::Test {
 protected:
  [[nodiscard]] FakeLaunchd launchdAnswering(LaunchdAnswer answer) {
    return FakeLaunchd(stage.root(), [this, answer](const Words& words) {
      questions.push_back(words);
      return answer;
    });
  }
  [[nodiscard]] std::optional<Error> registering() {
    try {
      agent->registerAgent();
    } catch (const Error& error) {
      return error;
    }
    return std::nullopt;
  }
  /// Unregisters, and waits for the completion and the thread it came on.
  [[nodiscard]] std::pair<std::optional<Error>, std::thread::id> unregistering() {
    std::promise<std::pair<std::optional<Error>, std::thread::id>> completed;
    agent->unregisterAgent([&completed](std::optional<Error> error) {
      completed.set_value({std::move(error), std::this_thread::get_id()});
    });
    return completed.get_future().get();
  }

  contract::TemporaryStage stage;
  std::vector<Words> questions;
  fakes::Ledger ledger;
  fakes::FakeClock clock{ledger};
  fakes::FakeBundles bundles{ledger, clock};
  platform::PosixThreads threads;
  fakes::FakeMainQueue queue{ledger, clock};
  StageAgentServices services{stage.root(), bundles, threads, queue};
  std::unique_ptr<platform::AgentService> agent = services.agent("a.plist");
};

TEST(ErrorFromTest, AnAnswerCarriesAnErrorOrNone) {
  const auto from = [](std::int32_t status, const std::string& output) {
    return textOf(errorFrom(LaunchdAnswer{.status = status, .output = output, .errors = {}}));
  };
  EXPECT_EQ(from(0, "D\t1\tnot looked at"), "none");
  EXPECT_EQ(from(1, "D\t-7\tText\twith\na tab"), "D|-7|Text\twith\na tab");
  EXPECT_EQ(from(1, "D\t0\t"), "D|0|");
  EXPECT_EQ(from(1, ""), "TamoStage|2|The stage's launchd gave no error.");
  EXPECT_EQ(from(1, "D\t1"), "TamoStage|2|The stage's launchd gave no error.");
  EXPECT_EQ(from(1, "D\tx\tText"), "TamoStage|2|The stage's launchd gave an error without a code.");
  EXPECT_EQ(textOf(errorFrom(std::nullopt)), "TamoStage|1|The stage's launchd does not answer.");
}

TEST_F(StageAgentServicesTest, TheStatusIsAskedAfreshEachTime) {
  for (const auto* status : {"0", "1", "2", "3"}) {
    const auto launchd = launchdAnswering({.status = 0, .output = status, .errors = {}});
    EXPECT_EQ(std::to_string(agent->status()), status);
  }
  EXPECT_EQ(questions, std::vector<Words>(4, Words{"service-status", "a.plist"}));
}

TEST_F(StageAgentServicesTest, AStatusThatIsNoneReadsNotFound) {
  const auto launchd = launchdAnswering({.status = 0, .output = "enabled", .errors = {}});
  EXPECT_EQ(agent->status(), 3);
}

TEST_F(StageAgentServicesTest, RegisteringNamesTheRunningBundle) {
  const auto launchd = launchdAnswering({});
  EXPECT_EQ(textOf(registering()), "none");
  EXPECT_EQ(questions, (std::vector<Words>{{"service-register", bundles.mainBundle, "a.plist"}}));
}

TEST_F(StageAgentServicesTest, ARefusedRegisterRaisesTheErrorUnchanged) {
  const auto launchd = launchdAnswering(
      {.status = 1, .output = "SMAppServiceErrorDomain\t1\tOperation not permitted", .errors = {}});
  EXPECT_EQ(textOf(registering()), "SMAppServiceErrorDomain|1|Operation not permitted");
}

TEST_F(StageAgentServicesTest, AnUnregisterCompletesOnAnotherThread) {
  const auto launchd = launchdAnswering({});
  const auto [error, thread] = unregistering();
  EXPECT_EQ(textOf(error), "none");
  EXPECT_NE(thread, std::this_thread::get_id());
  EXPECT_EQ(questions, (std::vector<Words>{{"service-unregister", "a.plist"}}));
}

TEST_F(StageAgentServicesTest, AFailedUnregisterCompletesWithItsError) {
  const auto launchd = launchdAnswering({.status = 1, .output = "D\t9\tText", .errors = {}});
  EXPECT_EQ(textOf(unregistering().first), "D|9|Text");
}

TEST_F(StageAgentServicesTest, TheSettingsAreOnlyAskedFor) {
  const auto launchd = launchdAnswering({.status = 1, .output = "", .errors = {}});
  services.openSystemSettingsLoginItems();
  EXPECT_EQ(questions, (std::vector<Words>{{"open-login-items"}}));
}

TEST_F(StageAgentServicesTest, WithoutLaunchdEverythingFailsAndNothingHangs) {
  EXPECT_EQ(agent->status(), 3);
  EXPECT_EQ(textOf(registering()), "TamoStage|1|The stage's launchd does not answer.");
  EXPECT_EQ(textOf(unregistering().first), "TamoStage|1|The stage's launchd does not answer.");
  services.openSystemSettingsLoginItems();
}

TEST_F(StageAgentServicesTest, WithoutAThreadAnUnregisterCompletesOnATurnOfTheMainQueue) {
  const auto launchd = launchdAnswering({.status = 0, .output = "", .errors = {}});
  fakes::FakeThreads none{ledger, clock};
  none.available = false;
  StageAgentServices threadless{stage.root(), bundles, none, queue};
  int completed = 0;
  threadless.agent("a.plist")->unregisterAgent(
      [&completed](const auto& error) { completed += error ? 0 : 1; });
  EXPECT_EQ(completed, 0);
  queue.runPosted();
  EXPECT_EQ(completed, 1);
  EXPECT_EQ(questions, (std::vector<Words>{{"service-unregister", "a.plist"}}));
}

}  // namespace
}  // namespace tamo::stage

#include "launch/agent_registration.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

#include "platform/error.hpp"
#include "unit/launch/launch_rig.hpp"

namespace tamo {
namespace {

using namespace std::chrono_literals;
using platform::Error;
using platform::Nothing;
using platform::Task;
using ::testing::ElementsAre;

constexpr std::int32_t corePid = 812;

/// A registration on fakes. The Core is not running until runCore().
class AgentRegistrationTest : public ::testing::Test {
 protected:
  /// Lets the hard stop find a Core of its own group.
  void runCore() {
    printed = printOf("\tpid = 812\n");
    rig.kernelProcesses.processes[corePid] = {.startSeconds = 100, .group = corePid};
  }

  void run(Task<Nothing>& task) {
    task.start();
    while (!task.done() && !(rig.mainQueue.idle() && rig.threads.waiting.empty())) {
      rig.mainQueue.runUntilIdle();
      rig.threads.runAll();
    }
    ASSERT_TRUE(task.done());
  }

  /// Domain, code and description of what the task raises; "none" when it raises nothing.
  std::string raised(Task<Nothing> task) {
    run(task);
    try {
      static_cast<void>(task.take());
    } catch (const Error& error) {
      return error.domain() + " " + std::to_string(error.code()) + " " + error.description();
    }
    return "none";
  }

  std::vector<std::string> deeds() { return rig.ledger.textsOf({"service: ", "threads: ", "kernel: kill"}); }

  LaunchRig rig;
  std::optional<std::string> printed;
  std::unique_ptr<platform::Logger> log = rig.logSystem.logger("studio.pell.Tamo.Core", "lifecycle");
  HardStopping hardStopping{{.kernelProcesses = rig.kernelProcesses,
                             .threads = rig.threads,
                             .files = rig.files,
                             .bundles = rig.bundles,
                             .clock = rig.clock,
                             .mainQueue = rig.mainQueue,
                             .log = *log,
                             .printedJob = [this] { return printed; },
                             .dataDirectory = [] { return std::nullopt; }}};
  AgentRegistration registration{rig.mainQueue, hardStopping};
  fakes::FakeAgentServices& services = rig.agentServices;
  std::unique_ptr<platform::AgentService> service = services.agent("studio.pell.tamo.core.plist");
};

using UnregisterTest = AgentRegistrationTest;
using ReseatTest = AgentRegistrationTest;

TEST_F(UnregisterTest, ACompletionWithoutAnErrorEndsIt) {
  services.status = AgentStatus::enabled;
  EXPECT_EQ(raised(registration.unregister(*service)), "none");
  EXPECT_EQ(services.status, AgentStatus::notRegistered);
}

TEST_F(UnregisterTest, TheCompletionsErrorIsRaisedUnchanged) {
  services.unregisterError = Error("SMAppServiceErrorDomain", 1, "Operation not permitted");
  EXPECT_EQ(raised(registration.unregister(*service)), "SMAppServiceErrorDomain 1 Operation not permitted");
}

TEST_F(UnregisterTest, NothingHappensBeforeTheTaskIsStarted) {
  const auto task = registration.unregister(*service);
  EXPECT_EQ(rig.ledger.count("service: unregister"), 0U);
}

TEST_F(UnregisterTest, ItIsAskedForOnceWhateverTheStatusAndNothingElseIs) {
  for (const std::int64_t status : {0, 1, 2, 3, 4}) {
    rig.ledger.clear();
    services.status = status;
    EXPECT_EQ(raised(registration.unregister(*service)), "none");
    EXPECT_THAT(rig.ledger.texts(), ElementsAre("service: unregister"));
  }
}

// 6 is "there is no such job" and 12 is "registered already", among others; none of them is a success.
constexpr std::int64_t everyCode[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 22, -1, 5'000'000'000};

TEST_F(UnregisterTest, AnErrorOfAnyCodeIsRaised) {
  for (const auto code : everyCode) {
    services.unregisterError = Error("SMAppServiceErrorDomain", code, "");
    EXPECT_EQ(raised(registration.unregister(*service)),
              "SMAppServiceErrorDomain " + std::to_string(code) + " ");
  }
}

TEST_F(ReseatTest, AnErrorOfAnyCodeIsRaised) {
  for (const auto code : everyCode) {
    services.status = AgentStatus::enabled;
    services.registerError = Error("SMAppServiceErrorDomain", code, "");
    EXPECT_EQ(raised(registration.reseat(*service)), "SMAppServiceErrorDomain " + std::to_string(code) + " ");
    services.status = AgentStatus::enabled;
    services.unregisterError = Error("Other", code, "");
    EXPECT_EQ(raised(registration.reseat(*service)), "Other " + std::to_string(code) + " ");
    services.unregisterError = std::nullopt;
  }
}

TEST_F(UnregisterTest, AFailureIsNotTriedAgain) {
  services.unregisterError = Error("Domain", 1, "text");
  EXPECT_EQ(raised(registration.unregister(*service)), "Domain 1 text");
  EXPECT_THAT(rig.ledger.textsOf({"service: ", "queue: ", "clock: "}),
              ElementsAre("service: agent studio.pell.tamo.core.plist", "service: unregister"));
}

TEST_F(UnregisterTest, ItIsSuspendedUntilTheCompletion) {
  std::function<void()> later;
  services.unregisterDelivery = [&later](auto deliver) { later = deliver; };
  auto task = registration.unregister(*service);
  task.start();
  rig.mainQueue.runUntilIdle();
  EXPECT_FALSE(task.done());
  later();
  EXPECT_FALSE(task.done());
  rig.mainQueue.runUntilIdle();
  EXPECT_TRUE(task.done());
}

TEST_F(UnregisterTest, ACompletionOnAnotherThreadResumesOnTheMainThread) {
  services.unregisterDelivery = [](auto deliver) { std::thread(deliver).join(); };
  EXPECT_EQ(raised(registration.unregister(*service)), "none");
}

TEST_F(UnregisterTest, ASecondCompletionIsFatal) {
  services.unregisterDelivery = [](auto deliver) {
    deliver();
    deliver();
  };
  auto task = registration.unregister(*service);
  EXPECT_DEATH(task.start(), "fatal: a completion was delivered twice");
}

TEST_F(UnregisterTest, OffTheMainThreadIsFatal) {
  EXPECT_DEATH(std::thread([this] {
                 auto task = registration.unregister(*service);
                 task.start();
               }).join(),
               "fatal: unregistering the agent entered off the main thread");
}

TEST_F(ReseatTest, AnEnabledAgentIsUnregisteredAndThenRegistered) {
  services.status = AgentStatus::enabled;
  EXPECT_EQ(raised(registration.reseat(*service)), "none");
  EXPECT_THAT(rig.ledger.textsOf({"service: status", "service: register", "service: unregister"}),
              ElementsAre("service: status -> 1", "service: unregister", "service: register"));
}

TEST_F(ReseatTest, AnAgentOfAnotherStatusIsOnlyRegistered) {
  runCore();
  for (const std::int64_t status :
       {AgentStatus::notRegistered, AgentStatus::requiresApproval, AgentStatus::notFound}) {
    rig.ledger.clear();
    services.status = status;
    EXPECT_EQ(raised(registration.reseat(*service)), "none");
    EXPECT_THAT(deeds(), ElementsAre("service: status -> " + std::to_string(status), "service: register"));
    EXPECT_EQ(hardStopping.hardStop(), std::nullopt);
  }
}

TEST_F(ReseatTest, AStatusThatNobodyKnowsIsNotEnabled) {
  runCore();
  for (const std::int64_t status : {std::int64_t{4}, std::int64_t{-1}, std::int64_t{257}, std::int64_t{65537},
                                    std::int64_t{4'294'967'297}}) {
    rig.ledger.clear();
    services.status = status;
    EXPECT_EQ(raised(registration.reseat(*service)), "none");
    EXPECT_THAT(deeds(), ElementsAre("service: status -> " + std::to_string(status), "service: register"));
  }
}

TEST_F(ReseatTest, TheStatusIsReadAfreshForEachReseat) {
  services.status = AgentStatus::enabled;
  EXPECT_EQ(raised(registration.reseat(*service)), "none");
  services.status = AgentStatus::requiresApproval;
  rig.ledger.clear();
  EXPECT_EQ(raised(registration.reseat(*service)), "none");
  EXPECT_THAT(deeds(), ElementsAre("service: status -> 2", "service: register"));
  services.status = AgentStatus::enabled;
  rig.ledger.clear();
  EXPECT_EQ(raised(registration.reseat(*service)), "none");
  EXPECT_THAT(deeds(), ElementsAre("service: status -> 1", "service: unregister", "service: register"));
}

TEST_F(ReseatTest, TheStatusIsReadOnceAndNotBetweenTheTwoSteps) {
  rig.ledger.clear();
  services.nextStatuses = {AgentStatus::enabled, AgentStatus::notFound};
  EXPECT_EQ(raised(registration.reseat(*service)), "none");
  EXPECT_THAT(deeds(), ElementsAre("service: status -> 1", "service: unregister", "service: register"));
}

TEST_F(ReseatTest, AStatusThatBecomesEnabledMeanwhileChangesNothing) {
  rig.ledger.clear();
  services.nextStatuses = {AgentStatus::requiresApproval, AgentStatus::enabled};
  EXPECT_EQ(raised(registration.reseat(*service)), "none");
  EXPECT_THAT(deeds(), ElementsAre("service: status -> 2", "service: register"));
}

// launchd is known to refuse a register that follows an unregister at once.
TEST_F(ReseatTest, AFailingRegisterIsNotTriedAgainNorWaitedFor) {
  services.status = AgentStatus::enabled;
  services.registerError = Error("SMAppServiceErrorDomain", 1, "Operation not permitted");
  EXPECT_EQ(raised(registration.reseat(*service)), "SMAppServiceErrorDomain 1 Operation not permitted");
  EXPECT_EQ(rig.ledger.count("service: register"), 1U);
  EXPECT_THAT(rig.ledger.textsOf({"queue: ", "clock: "}), ::testing::IsEmpty());
}

TEST_F(ReseatTest, NothingIsWaitedForBetweenTheUnregisterAndTheRegister) {
  services.status = AgentStatus::enabled;
  EXPECT_EQ(raised(registration.reseat(*service)), "none");
  EXPECT_THAT(rig.ledger.textsOf({"queue: ", "clock: "}), ::testing::IsEmpty());
}

TEST_F(ReseatTest, ARegisterThatLeavesTheAgentUnapprovedIsASuccess) {
  services.status = AgentStatus::enabled;
  services.statusAfterRegister = AgentStatus::requiresApproval;
  EXPECT_EQ(raised(registration.reseat(*service)), "none");
  EXPECT_EQ(rig.ledger.count("service: settings"), 0U);
}

TEST_F(ReseatTest, AFailingRegisterOfAnAgentNotFoundIsRaised) {
  services.status = AgentStatus::notFound;
  services.registerError = Error("SMAppServiceErrorDomain", 8, "no such list");
  EXPECT_EQ(raised(registration.reseat(*service)), "SMAppServiceErrorDomain 8 no such list");
}

TEST_F(ReseatTest, AFailingUnregisterIsRaisedAndNothingIsRegistered) {
  services.status = AgentStatus::enabled;
  services.unregisterError = Error("Domain", 7, "text");
  services.registerError = Error("Other", 8, "never raised");
  EXPECT_EQ(raised(registration.reseat(*service)), "Domain 7 text");
  EXPECT_EQ(rig.ledger.count("service: register"), 0U);
}

TEST_F(ReseatTest, AFailingRegisterAfterAnUnregisterIsRaised) {
  services.status = AgentStatus::enabled;
  services.registerError = Error("Domain", 9, "text");
  EXPECT_EQ(raised(registration.reseat(*service)), "Domain 9 text");
  EXPECT_EQ(services.status, AgentStatus::notRegistered);
}

TEST_F(ReseatTest, ItRegistersOnlyAfterTheUnregisterHasCompleted) {
  services.status = AgentStatus::enabled;
  std::function<void()> later;
  services.unregisterDelivery = [&later](auto deliver) { later = deliver; };
  auto task = registration.reseat(*service);
  task.start();
  rig.mainQueue.runUntilIdle();
  EXPECT_EQ(rig.ledger.count("service: register"), 0U);
  later();
  rig.mainQueue.runUntilIdle();
  EXPECT_TRUE(task.done());
  EXPECT_EQ(rig.ledger.count("service: register"), 1U);
}

TEST_F(ReseatTest, ARunningCoreIsWatchedAndItsEndAwaitedBeforeTheRegister) {
  runCore();
  services.status = AgentStatus::enabled;
  services.unregisterDelivery = [this](auto deliver) {
    rig.kernelProcesses.processes.erase(corePid);
    deliver();
  };
  EXPECT_EQ(raised(registration.reseat(*service)), "none");
  EXPECT_THAT(rig.ledger.textsOf({"service: register", "service: unregister", "threads: ", "log: "}),
              ElementsAre("threads: detach", "service: unregister", "log: default hardstop pid 812: exited",
                          "service: register"));
  EXPECT_EQ(hardStopping.hardStop(), "exited");
}

TEST_F(ReseatTest, ACompletedUnregisterCountsAsAskedSoThatACoreThatStaysIsKilled) {
  runCore();
  services.status = AgentStatus::enabled;
  rig.kernelProcesses.onKillGroup = [this](std::int32_t) { rig.kernelProcesses.processes.erase(corePid); };
  EXPECT_EQ(raised(registration.reseat(*service)), "none");
  EXPECT_EQ(rig.ledger.count("kernel: kill group 812"), 1U);
  EXPECT_THAT(hardStopping.hardStop().value_or("none"), ::testing::Not(::testing::HasSubstr("stopFailed")));
}

TEST_F(ReseatTest, ACoreThatOutlivesEverythingIsRegisteredOverAllTheSame) {
  runCore();
  services.status = AgentStatus::enabled;
  EXPECT_EQ(raised(registration.reseat(*service)), "none");
  EXPECT_EQ(hardStopping.hardStop(), "killedGroup(812, gone: false)");
  EXPECT_EQ(rig.ledger.count("service: register"), 1U);
}

TEST_F(ReseatTest, ASparedCoreThatStaysIsRegisteredOverAfterItsWait) {
  runCore();
  rig.kernelProcesses.processes[rig.kernelProcesses.pid] = {.startSeconds = 99, .group = 77};
  services.status = AgentStatus::enabled;
  EXPECT_EQ(raised(registration.reseat(*service)), "none");
  EXPECT_EQ(hardStopping.hardStop(), "spared(\"young_core\", gone: false)");
  EXPECT_EQ(rig.now(), 22s);
  EXPECT_EQ(rig.ledger.count("service: register"), 1U);
}

TEST_F(ReseatTest, AFailingUnregisterCallsTheHardStopOff) {
  runCore();
  services.status = AgentStatus::enabled;
  services.unregisterError = Error("Domain", 7, "text");
  EXPECT_EQ(raised(registration.reseat(*service)), "Domain 7 text");
  EXPECT_EQ(hardStopping.hardStop(), "cancelled stopFailed");
  EXPECT_EQ(rig.ledger.count("kernel: kill"), 0U);
}

TEST_F(ReseatTest, OffTheMainThreadIsFatal) {
  EXPECT_DEATH(std::thread([this] {
                 auto task = registration.reseat(*service);
                 task.start();
               }).join(),
               "fatal: reseating the agent entered off the main thread");
}

}  // namespace
}  // namespace tamo

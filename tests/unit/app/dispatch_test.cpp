#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "companion.hpp"

namespace tamo {
namespace {

using Texts = std::vector<std::string>;

/// What the frame does around the routes, by its traces in the ledger.
class DispatchTest : public ::testing::Test {
 protected:
  /// Lock, service, log, terminate and the writing of receipts, in order.
  [[nodiscard]] Texts frame() const {
    return companion.fakes.ledger.textsOf(
        {"lock: ", "service: ", "log: ", "application: ", "files: write /Users", "tool: /"});
  }
  void downloaded() { companion.runsFrom(downloads); }
  /// The action waits for its answer, which is given by `completion`.
  void unregisterUntilSuspended() {
    companion.fakes.agentServices.unregisterDelivery = [this](auto deliver) { completion = deliver; };
    delegate.emplace(companion.fakes.platform, companion.config,
                     std::vector<std::string>{"/program", "--core-action", "unregister"});
    delegate->applicationDidFinishLaunching();
    companion.fakes.mainQueue.runUntilIdle();
  }

  const std::string lockPath = "lock: open /tmp/of-the-user/studio.pell.tamo.core.job.lock";
  const std::string agent = "service: agent studio.pell.tamo.core.plist";
  const std::string downloads = Companion::downloads;
  Companion companion;
  std::optional<CoreDelegate> delegate;
  std::function<void()> completion;
};

TEST_F(DispatchTest, StatusTakesNoLockAndReadsTheStatusForTheRecordAndTheLine) {
  companion.act("status");
  EXPECT_EQ(frame(),
            (Texts{agent, "service: status -> 1", "service: status -> 1",
                   "log: default status -> status 1 ok Optional(true)<private:>", "application: terminate"}));
}

TEST_F(DispatchTest, AnUnknownNameTakesTheLockAndReleasesItAfterTheTerminateRequest) {
  companion.act("bogus");
  EXPECT_EQ(
      frame(),
      (Texts{agent, lockPath, "lock: try", "service: status -> 1", "service: status -> 1",
             "log: default bogus -> status 1 ok Optional(false) error TamoCore 64<private: Unknown action>",
             "application: terminate", "lock: unlock 7", "lock: close 7"}));
}

/// Unknown is every name but the seven, and takes the lock like any other.
TEST_F(DispatchTest, NamesAreComparedCharacterForCharacter) {
  for (const std::string name : {"Status", "REGISTER", "Unregister", "reseat ", " restart", "sync/",
                                 "status\n", "syn", "regist", "register\u0301", "tamo-core://status", ""}) {
    Companion fresh;
    fresh.perform(name);
    EXPECT_EQ(fresh.fakes.ledger.textsOf({"lock: ", "service: reg", "service: unreg", "tool: ", "log: "}),
              (Texts{lockPath, "lock: try",
                     "log: default " + name +
                         " -> status 1 ok Optional(false) error TamoCore 64"
                         "<private: Unknown action>",
                     "lock: unlock 7", "lock: close 7"}));
  }
}

TEST_F(DispatchTest, EveryActionButStatusTakesTheLockBeforeAnythingElseHappens) {
  for (const std::string action : {"register", "unregister", "reseat", "restart", "sync", "bogus"}) {
    Companion fresh;
    fresh.printsAlways(Companion::print());
    fresh.kickstartGives(0);
    fresh.perform(action);
    const auto deeds = fresh.fakes.ledger.textsOf({"service: ", "lock: ", "tool: ", "kernel: ", "log: "});
    ASSERT_GE(deeds.size(), 3U);
    EXPECT_EQ(Texts(deeds.begin(), deeds.begin() + 3), (Texts{agent, lockPath, "lock: try"})) << action;
    EXPECT_EQ(fresh.fakes.ledger.texts().back(), "lock: close 7") << action;
    EXPECT_EQ(fresh.fakes.ledger.count(agent), 1U) << action;
  }
}

TEST_F(DispatchTest, ALockOfDescriptorZeroIsALock) {
  companion.fakes.lockFiles.given = 0;
  companion.act("bogus");
  EXPECT_EQ(companion.fakes.ledger.textsOf({"lock: unlock", "lock: close"}),
            (Texts{"lock: unlock 0", "lock: close 0"}));
}

TEST_F(DispatchTest, AuditInstallIsUnknownAlthoughTheSuccessRuleNamesIt) {
  companion.act("audit-install");
  EXPECT_EQ(companion.logLines(), Texts{"log: default audit-install -> status 1 ok Optional(false) error "
                                        "TamoCore 64<private: Unknown action>"});
}

TEST_F(DispatchTest, ASyncReadsTheStatusInTheRouteForTheRuleTheRecordAndTheLine) {
  companion.fakes.agentServices.nextStatuses = {0, 1, 2, 3};
  companion.act("sync");
  EXPECT_EQ(frame(), (Texts{agent, lockPath, "lock: try", "service: status -> 0", "service: status -> 1",
                            "service: status -> 2", "service: status -> 3",
                            "log: default sync -> status 3 ok Optional(true)<private:>",
                            "application: terminate", "lock: unlock 7", "lock: close 7"}));
}

TEST_F(DispatchTest, ARegisterReadsTheStatusOnceMoreForTheApproval) {
  companion.fakes.agentServices.nextStatuses = {0, 2, 1, 0, 3};
  companion.act("register");
  EXPECT_EQ(frame(), (Texts{agent, lockPath, "lock: try", "service: status -> 0", "service: register",
                            "service: status -> 2", "service: settings", "service: status -> 1",
                            "service: status -> 0", "service: status -> 3",
                            "log: default register -> status 3 ok Optional(true)<private:>",
                            "application: terminate", "lock: unlock 7", "lock: close 7"}));
}

TEST_F(DispatchTest, AnUnregisterThatLeavesNotRegisteredIsOk) {
  companion.act("unregister");
  EXPECT_EQ(companion.logLines(), Texts{"log: default unregister -> status 0 ok Optional(true)<private:>"});
}

TEST_F(DispatchTest, AnUnregisterThatLeavesNotFoundIsNotOk) {
  companion.fakes.agentServices.nextStatuses = {3, 3, 3};
  companion.act("unregister");
  EXPECT_EQ(companion.logLines(), Texts{"log: default unregister -> status 3 ok Optional(false)<private:>"});
}

TEST_F(DispatchTest, OnlyRegisterReseatAndRestartOpenTheSettingsForApproval) {
  for (const std::string action :
       {"register", "reseat", "restart", "sync", "unregister", "status", "bogus"}) {
    Companion waiting;
    waiting.fakes.agentServices.status = 2;
    waiting.fakes.agentServices.statusAfterRegister = 2;
    waiting.fakes.agentServices.unregisterDelivery = [](const auto&) {};
    waiting.act(action);
    const bool opens = action == "register" || action == "reseat" || action == "restart";
    EXPECT_EQ(waiting.fakes.ledger.count("service: settings"), opens ? 1U : 0U) << action;
  }
}

TEST_F(DispatchTest, ASyncThatLeavesApprovalPendingIsNotOkAndOpensNothing) {
  companion.fakes.agentServices.status = 2;
  companion.act("sync");
  EXPECT_EQ(companion.logLines(), Texts{"log: default sync -> status 2 ok Optional(false)<private:>"});
  EXPECT_EQ(companion.fakes.ledger.count("service: settings"), 0U);
}

TEST_F(DispatchTest, WithoutTheLockTheActionGoesOnAndNothingIsUnlocked) {
  companion.fakes.lockFiles.opens = false;
  companion.fakes.agentServices.status = 0;
  companion.act("sync");
  EXPECT_EQ(companion.fakes.ledger.textsOf({"lock: "}), Texts{lockPath});
  EXPECT_EQ(companion.fakes.ledger.count("log: default sync"), 1U);
}

TEST_F(DispatchTest, ALockThatStaysTakenDelaysTheActionByItsOwnWaitOnly) {
  companion.fakes.lockFiles.heldUntil = std::chrono::hours(1);
  companion.fakes.agentServices.status = 0;
  companion.act("sync");
  EXPECT_EQ(companion.logLines(), Texts{"log: default sync -> status 0 ok Optional(false)<private:>"});
  EXPECT_EQ(companion.fakes.ledger.count("lock: unlock"), 0U);
  EXPECT_EQ(companion.fakes.ledger.count("lock: close"), 1U);
  EXPECT_EQ(companion.fakes.clock.monotonicNow(), std::chrono::milliseconds(60400));
}

TEST_F(DispatchTest, TheLockIsHeldAcrossASuspension) {
  unregisterUntilSuspended();
  EXPECT_TRUE(companion.fakes.lockFiles.held);
  EXPECT_TRUE(companion.logLines().empty());
  completion();
  companion.fakes.mainQueue.runUntilIdle();
  EXPECT_FALSE(companion.fakes.lockFiles.held);
  EXPECT_EQ(companion.fakes.ledger.count("log: default unregister"), 1U);
}

TEST_F(DispatchTest, AUrlThatComesWhileTheActionIsSuspendedChangesNothing) {
  unregisterUntilSuspended();
  delegate->application({"tamo-core://register"});
  companion.fakes.mainQueue.runUntilIdle();
  completion();
  companion.fakes.mainQueue.runUntilIdle();
  EXPECT_EQ(companion.logLines(), Texts{"log: default unregister -> status 0 ok Optional(true)<private:>"});
  EXPECT_EQ(companion.fakes.ledger.count("service: register"), 0U);
  EXPECT_EQ(companion.fakes.ledger.count("application: terminate"), 1U);
}

TEST_F(DispatchTest, ARefusedCopyLogsOneErrorAndTouchesNothing) {
  downloaded();
  companion.config.writesReceipts = true;
  companion.act("register");
  EXPECT_EQ(frame(), (Texts{"log: error register refused: tamo.test_copy_refused_live_data app=" + downloads +
                                " (only /Applications/Tamo.app opens the founder's data and Core)",
                            "application: terminate"}));
}

TEST_F(DispatchTest, ARefusedCopyIsRefusedUnknownNamesToo) {
  downloaded();
  companion.act("bogus");
  EXPECT_EQ(companion.fakes.ledger.count("log: error bogus refused: "), 1U);
  EXPECT_EQ(companion.fakes.ledger.count("lock: "), 0U);
}

TEST_F(DispatchTest, StatusOfACopyThatMayNotActStillRuns) {
  downloaded();
  companion.act("status");
  EXPECT_EQ(companion.logLines(), Texts{"log: default status -> status 1 ok Optional(true)<private:>"});
  EXPECT_EQ(companion.fakes.ledger.count("lock: "), 0U);
}

TEST_F(DispatchTest, AProofHomeSwitchesTheRefusalOff) {
  downloaded();
  companion.config.proofHome = "/tmp/x";
  companion.fakes.agentServices.status = 0;
  companion.act("register");
  EXPECT_EQ(companion.logLines(), Texts{"log: default register -> status 1 ok Optional(true)<private:>"});
}

TEST_F(DispatchTest, TheReceiptComesAfterTheLineAndBeforeTheTerminateRequest) {
  companion.config.writesReceipts = true;
  companion.act("status");
  const std::string path = "/Users/u/Library/Application Support/TamoPKG1/M2/900-core.json";
  EXPECT_EQ(companion.fakes.ledger.textsOf({"log: ", "files: write", "application: "}),
            (Texts{"log: default status -> status 1 ok Optional(true)<private:>", "files: write " + path,
                   "application: terminate"}));
}

TEST_F(DispatchTest, WithReceiptsOffNoActionWritesAnything) {
  for (const std::string action :
       {"register", "unregister", "reseat", "restart", "sync", "status", "bogus", "move-to-applications"}) {
    Companion silent;
    silent.fakes.agentServices.status = 0;
    silent.act(action);
    EXPECT_EQ(silent.fakes.ledger.count("files: write"), 0U) << action;
    EXPECT_EQ(silent.fakes.ledger.count("files: create directories"), 0U) << action;
  }
}

TEST_F(DispatchTest, AReceiptThatFailsIsALineAfterTheOutcomeAndChangesNothingElse) {
  companion.config.writesReceipts = true;
  companion.fakes.files.failsToCreateDirectories = true;
  companion.fakes.agentServices.status = 0;
  companion.act("sync");
  const auto lines =
      companion.fakes.ledger.textsOf({"log: default sync", "log: error", "application: terminate"});
  EXPECT_EQ(lines, (Texts{"log: default sync -> status 0 ok Optional(false)<private:>",
                          "log: error receipt failed", "application: terminate"}));
}

/// A receipt by its keys; the bytes are the receipt's own test.
class DispatchReceiptTest : public DispatchTest {
 protected:
  DispatchReceiptTest() { companion.config.writesReceipts = true; }

  [[nodiscard]] std::string receipt() const {
    return companion.fakes.files.contents.at(
        "/Users/u/Library/Application Support/TamoPKG1/M2/900-core.json");
  }
  static constexpr auto bundleLine =
      "  \"bundle\" : \"\\/Applications\\/Tamo.app\\/Contents\\/Library\\/LoginItems\\/Tamo Core.app\",\n";
};

TEST_F(DispatchReceiptTest, AnUnknownActionHoldsTheErrorAndNothingOfARoute) {
  companion.act("bogus");
  EXPECT_EQ(receipt(),
            std::string("{\n") + bundleLine +
                "  \"code\" : 64,\n  \"description\" : \"Unknown action\",\n  \"domain\" : \"TamoCore\",\n"
                "  \"ok\" : false,\n  \"operation\" : \"bogus\",\n  \"pid\" : 900,\n  \"status\" : 1,\n"
                "  \"timestamp\" : \"1970-01-01T00:00:00Z\"\n}");
}

TEST_F(DispatchReceiptTest, ASuccessfulStatusHoldsOkAndNoMore) {
  companion.act("status");
  EXPECT_EQ(receipt(),
            std::string("{\n") + bundleLine +
                "  \"ok\" : true,\n  \"operation\" : \"status\",\n  \"pid\" : 900,\n  \"status\" : 1,\n"
                "  \"timestamp\" : \"1970-01-01T00:00:00Z\"\n}");
}

TEST_F(DispatchReceiptTest, ARegisterThatAwaitsApprovalSaysSo) {
  companion.fakes.agentServices.status = 0;
  companion.fakes.agentServices.statusAfterRegister = 2;
  companion.act("register");
  EXPECT_THAT(receipt(), ::testing::HasSubstr("  \"needsApproval\" : true,\n  \"ok\" : false,\n"));
}

TEST_F(DispatchReceiptTest, ASyncThatLeavesApprovalPendingSaysNothingOfIt) {
  companion.fakes.agentServices.status = 2;
  companion.act("sync");
  EXPECT_THAT(receipt(), ::testing::Not(::testing::HasSubstr("needsApproval")));
  EXPECT_THAT(receipt(), ::testing::HasSubstr("  \"status\" : 2,\n"));
}

TEST_F(DispatchReceiptTest, ARestartUnderAHardStopTellsWhatBecameOfTheCore) {
  companion.printsAlways(Companion::print());
  companion.kickstartGives(0);
  companion.act("restart");
  EXPECT_THAT(receipt(), ::testing::HasSubstr("  \"hardStop\" : \"killedGroup(4242, gone: true)\",\n"
                                              "  \"kickstart\" : 0,\n"));
}

}  // namespace
}  // namespace tamo

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

#include "companion.hpp"

namespace tamo {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using Texts = std::vector<std::string>;

constexpr std::int64_t minute = 60;
/// What no table names, one beyond what a double holds exactly and one whose low 32 bits are 1 among them.
constexpr std::array<std::int64_t, 5> strangeStatuses{-1, 4, 5, 9007199254740993, 4294967297};

/// When an action counts as done, and what is said of one that failed.
class OutcomeRulesTest : public ::testing::Test {
 protected:
  OutcomeRulesTest() { companion.config.writesReceipts = true; }

  static std::string outcome(const std::string& action, std::int64_t status, bool ok) {
    return "log: default " + action + " -> status " + std::to_string(status) + " ok Optional(" +
           (ok ? "true" : "false") + ")<private:>";
  }
  [[nodiscard]] std::size_t settings() const { return companion.fakes.ledger.count("service: settings"); }

  Companion companion;
};

TEST_F(OutcomeRulesTest, AnErrorOpensNoSettingsAlthoughApprovalIsPending) {
  for (const std::string action : {"register", "reseat", "restart"}) {
    Companion fresh;
    fresh.config.writesReceipts = true;
    fresh.fakes.agentServices.status = 2;
    fresh.fakes.agentServices.registerError.emplace("D", 11, "denied");
    fresh.act(action);
    EXPECT_EQ(fresh.fakes.ledger.count("service: settings"), 0U) << action;
    EXPECT_THAT(fresh.receipt(), Not(HasSubstr("needsApproval")));
    EXPECT_THAT(fresh.receipt(), HasSubstr("  \"status\" : 2,\n"));
  }
}

/// The approval is asked about first, and that look alone decides; "ok" has a look of its own.
TEST_F(OutcomeRulesTest, ApprovalThatWasPendingAtItsLookIsReportedAlthoughItIsGivenAtTheNext) {
  companion.fakes.agentServices.nextStatuses = {0, 2, 1, 1, 1};
  companion.act("register");
  EXPECT_EQ(settings(), 1U);
  EXPECT_THAT(companion.receipt(), HasSubstr("  \"needsApproval\" : true,\n  \"ok\" : true,\n"));
}

TEST_F(OutcomeRulesTest, ApprovalThatIsWithdrawnAfterItsLookIsNotReported) {
  companion.fakes.agentServices.nextStatuses = {0, 1, 2, 2, 2};
  companion.act("register");
  EXPECT_EQ(settings(), 0U);
  EXPECT_THAT(companion.receipt(), Not(HasSubstr("needsApproval")));
  EXPECT_EQ(companion.logLines(), Texts{outcome("register", 2, false)});
}

/// How the route came to it plays no part: an agent that was kickstarted may await approval as well.
TEST_F(OutcomeRulesTest, ApprovalIsNotedAfterAKickstartToo) {
  for (const std::string action : {"register", "restart"}) {
    Companion fresh;
    fresh.config.writesReceipts = true;
    fresh.printsAlways(Companion::print(false));
    fresh.kickstartGives(0);
    fresh.fakes.agentServices.nextStatuses = {1, 2, 2, 2, 2};
    fresh.act(action);
    EXPECT_EQ(fresh.fakes.ledger.count("service: settings"), 1U) << action;
    EXPECT_THAT(fresh.receipt(),
                HasSubstr("  \"kickstart\" : 0,\n  \"needsApproval\" : true,\n  \"ok\" : false,\n"));
  }
}

/// Each look tells what was true at its own moment: the receipt's is the one before the line's.
TEST_F(OutcomeRulesTest, TheReceiptKeepsTheStatusOfItsOwnLook) {
  companion.fakes.agentServices.nextStatuses = {0, 1, 2, 3};
  companion.act("sync");
  EXPECT_EQ(companion.logLines(), Texts{outcome("sync", 3, true)});
  EXPECT_THAT(companion.receipt(), HasSubstr("  \"status\" : 2,\n"));
}

TEST_F(OutcomeRulesTest, ApprovalIsNotedForReseatAndRestartToo) {
  for (const std::string action : {"reseat", "restart"}) {
    Companion fresh;
    fresh.config.writesReceipts = true;
    fresh.fakes.agentServices.status = 0;
    fresh.fakes.agentServices.statusAfterRegister = 2;
    fresh.act(action);
    EXPECT_EQ(fresh.fakes.ledger.count("service: settings"), 1U) << action;
    EXPECT_THAT(fresh.receipt(), HasSubstr("  \"needsApproval\" : true,\n  \"ok\" : false,\n"));
  }
}

TEST_F(OutcomeRulesTest, AStatusThatNoTableNamesIsReportedAndIsNeitherSuccessNorApproval) {
  for (const auto status : strangeStatuses) {
    Companion fresh;
    fresh.config.writesReceipts = true;
    fresh.fakes.agentServices.status = 0;
    fresh.fakes.agentServices.statusAfterRegister = status;
    fresh.act("register");
    EXPECT_EQ(fresh.fakes.ledger.count("service: settings"), 0U);
    EXPECT_EQ(fresh.logLines(), Texts{outcome("register", status, false)});
    EXPECT_THAT(fresh.receipt(), HasSubstr("  \"status\" : " + std::to_string(status) + ",\n"));
  }
}

TEST_F(OutcomeRulesTest, AnUnregisterThatLeavesAnyOtherStatusIsNotOk) {
  for (const std::int64_t status : {std::int64_t{4294967296}, std::int64_t{-1}, std::int64_t{1},
                                    std::int64_t{2}, std::int64_t{3}, std::int64_t{4}}) {
    Companion fresh;
    fresh.fakes.agentServices.nextStatuses = {status, status, status};
    fresh.act("unregister");
    EXPECT_EQ(fresh.logLines(), Texts{outcome("unregister", status, false)});
  }
}

TEST_F(OutcomeRulesTest, AskingForTheStatusSucceedsWhateverItIs) {
  for (const std::int64_t status : {0, 1, 2, 3, 4, -1}) {
    Companion fresh;
    fresh.fakes.agentServices.status = status;
    fresh.act("status");
    EXPECT_EQ(fresh.logLines(), Texts{outcome("status", status, true)});
  }
}

TEST_F(OutcomeRulesTest, AnErrorKeepsItsDomainCodeAndDescription) {
  companion.fakes.agentServices.status = 3;
  companion.fakes.agentServices.registerError.emplace("Dömain x", std::numeric_limits<std::int64_t>::min(),
                                                      "d'après\nqui?");
  companion.act("register");
  EXPECT_EQ(companion.logLines(),
            Texts{"log: default register -> status 3 ok Optional(false) error Dömain x -9223372036854775808"
                  "<private: d'après\nqui?>"});
  EXPECT_THAT(companion.receipt(), HasSubstr("  \"code\" : -9223372036854775808,\n"
                                             "  \"description\" : \"d'après\\nqui?\",\n"
                                             "  \"domain\" : \"Dömain x\",\n"));
}

TEST_F(OutcomeRulesTest, AnErrorOfEmptyTextsIsAnError) {
  companion.fakes.agentServices.unregisterError.emplace("", 0, "");
  companion.act("unregister");
  EXPECT_EQ(companion.logLines(),
            Texts{"log: default unregister -> status 1 ok Optional(false) error  0<private: >"});
  EXPECT_THAT(companion.receipt(), HasSubstr("  \"code\" : 0,\n  \"description\" : \"\",\n"
                                             "  \"domain\" : \"\",\n"));
}

/// Not even one that often passes by itself.
TEST_F(OutcomeRulesTest, AnActionThatFailedIsNotTriedAgain) {
  for (const std::string action : {"register", "unregister", "reseat", "restart"}) {
    Companion fresh;
    fresh.fakes.agentServices.status = 0;
    fresh.fakes.agentServices.registerError.emplace("SMAppServiceErrorDomain", 1, "Operation not permitted");
    fresh.fakes.agentServices.unregisterError.emplace("SMAppServiceErrorDomain", 1,
                                                      "Operation not permitted");
    fresh.act(action);
    EXPECT_EQ(fresh.fakes.ledger.textsOf({"service: register", "service: unregister"}).size(), 1U) << action;
    EXPECT_EQ(fresh.fakes.clock.monotonicNow(), std::chrono::milliseconds(400)) << action;
  }
}

/// The lock is waited for for half a minute.
TEST_F(OutcomeRulesTest, AReceiptTellsWhenItWasMadeNotWhenTheActionBegan) {
  companion.fakes.lockFiles.heldUntil = std::chrono::seconds(minute / 2);
  companion.act("bogus");
  EXPECT_THAT(companion.receipt(), HasSubstr("\"timestamp\" : \"1970-01-01T00:00:30Z\""));
}

TEST_F(OutcomeRulesTest, TheNameIsReportedAsItWasReceived) {
  companion.act(" Sync/\"x\" \u00e9");
  EXPECT_EQ(companion.logLines(), Texts{"log: default  Sync/\"x\" \u00e9 -> status 1 ok Optional(false) "
                                        "error TamoCore 64<private: Unknown action>"});
  EXPECT_THAT(companion.receipt(), HasSubstr("  \"operation\" : \" Sync\\/\\\"x\\\" \u00e9\",\n"));
}

}  // namespace
}  // namespace tamo

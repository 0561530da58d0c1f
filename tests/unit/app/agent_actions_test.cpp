#include "app/agent_actions.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "companion.hpp"

namespace tamo {
namespace {

using Texts = std::vector<std::string>;

/// The routes inside the real dispatch, on fakes. What a route did is read from the ledger, what it led to
/// from the outcome line.
class AgentActionsTest : public ::testing::Test {
 protected:
  /// What was done to the agent and to the Core: no looks, no readings.
  [[nodiscard]] Texts deeds() const {
    return companion.fakes.ledger.textsOf({"service: register", "service: unregister", "service: settings",
                                           "tool: /bin/launchctl kickstart", "kernel: kill", "sockets: "});
  }
  [[nodiscard]] std::string outcome() const {
    const auto lines = companion.logLines();
    return lines.empty() ? "" : lines.back().substr(std::string("log: default ").size());
  }
  static std::string error(const std::string& domain) { return " error " + domain; }

  const std::string kickstart = "tool: /bin/launchctl kickstart gui/501/studio.pell.tamo.core";
  const std::string kickstartKill = "tool: /bin/launchctl kickstart -k gui/501/studio.pell.tamo.core";
  const std::string data = "/Users/u/Library/Application Support/Tamo/";
  Companion companion;
};

TEST_F(AgentActionsTest, RegisterOfAnAgentThatIsNotEnabledRegistersIt) {
  for (const std::int64_t status : {0, 2, 3}) {
    Companion fresh;
    fresh.fakes.agentServices.status = status;
    fresh.act("register");
    EXPECT_EQ(fresh.fakes.ledger.count("service: register"), 1U) << status;
    EXPECT_EQ(fresh.fakes.ledger.count("tool: "), 0U) << status;
    EXPECT_EQ(fresh.logLines().back(), "log: default register -> status 1 ok Optional(true)<private:>");
  }
}

TEST_F(AgentActionsTest, RegisterOfAnEnabledAgentKickstartsItAndIsDoneWhenThatSucceeds) {
  companion.kickstartGives(0);
  companion.act("register");
  EXPECT_EQ(deeds(), Texts{kickstart});
  EXPECT_EQ(companion.fakes.ledger.count("tool: /bin/launchctl print"), 0U);
  EXPECT_EQ(outcome(), "register -> status 1 ok Optional(true) kickstart 0<private:>");
}

TEST_F(AgentActionsTest, RegisterWhoseKickstartFailsIsDoneWhenASocketAnswers) {
  companion.kickstartGives(37);
  companion.fakes.localSockets.accepting = {data + "core.sock"};
  companion.act("register");
  EXPECT_EQ(deeds(), (Texts{kickstart, "sockets: connect " + data + "core.sock"}));
  EXPECT_EQ(companion.fakes.ledger.count("tool: /bin/launchctl print"), 0U);
  EXPECT_EQ(outcome(), "register -> status 1 ok Optional(true) kickstart 37<private:>");
}

TEST_F(AgentActionsTest, RegisterWhoseKickstartFailsIsDoneWhenLaunchdReportsAProcess) {
  companion.kickstartGives(37);
  companion.printsAlways(Companion::print());
  companion.act("register");
  EXPECT_EQ(companion.fakes.ledger.count("service: register"), 0U);
  EXPECT_EQ(outcome(), "register -> status 1 ok Optional(true) kickstart 37<private:>");
}

TEST_F(AgentActionsTest, RegisterWhoseKickstartFailsReseatsWhenNothingSpeaksForTheCore) {
  companion.kickstartGives(37);
  companion.printsAlways(Companion::print(false));
  companion.act("register");
  EXPECT_EQ(deeds(),
            (Texts{kickstart, "sockets: connect " + data + "core.sock",
                   "sockets: connect " + data + "talk.sock", "service: unregister", "service: register"}));
  EXPECT_EQ(outcome(), "register -> status 1 ok Optional(true) kickstart 37<private:>");
}

TEST_F(AgentActionsTest, RegisterWithoutADataDirectoryAsksNoSocket) {
  companion.fakes.user.entry.reset();
  companion.kickstartGives(37);
  companion.printsAlways(Companion::print());
  companion.act("register");
  EXPECT_EQ(companion.fakes.ledger.count("sockets: "), 0U);
}

TEST_F(AgentActionsTest, ARegisterErrorIsReportedWithItsDescriptionPrivate) {
  companion.fakes.agentServices.status = 0;
  companion.fakes.agentServices.registerError.emplace("SMAppServiceErrorDomain", 1,
                                                      "Operation not permitted");
  companion.act("register");
  EXPECT_EQ(outcome(),
            "register -> status 0 ok Optional(false) error SMAppServiceErrorDomain 1"
            "<private: Operation not permitted>");
}

TEST_F(AgentActionsTest, UnregisterNeedsNoHardStopAndNoLaunchctl) {
  companion.act("unregister");
  EXPECT_EQ(deeds(), Texts{"service: unregister"});
  EXPECT_EQ(companion.fakes.ledger.count("tool: "), 0U);
}

TEST_F(AgentActionsTest, AnUnregisterErrorIsReported) {
  companion.fakes.agentServices.unregisterError.emplace("D", 3, "no");
  companion.act("unregister");
  EXPECT_EQ(outcome(), "unregister -> status 1 ok Optional(false) error D 3<private: no>");
}

TEST_F(AgentActionsTest, ReseatUnregistersUnderAHardStopAndRegisters) {
  companion.printsAlways(Companion::print());
  companion.act("reseat");
  EXPECT_EQ(deeds(), (Texts{"service: unregister", "kernel: kill group 4242", "service: register"}));
  EXPECT_EQ(companion.logLines(), (Texts{"log: default hardstop pid 4242: killedGroup(4242, gone: true)",
                                         "log: default reseat -> status 1 ok Optional(true)<private:>"}));
}

TEST_F(AgentActionsTest, AReseatThatCannotPrintTheJobSignalsNobody) {
  companion.fakes.files.failsToOpen = true;
  companion.act("reseat");
  EXPECT_EQ(deeds(), (Texts{"service: unregister", "service: register"}));
  EXPECT_EQ(outcome(), "reseat -> status 1 ok Optional(true)<private:>");
}

TEST_F(AgentActionsTest, ARestartOfAnAgentThatIsNotEnabledRegistersIt) {
  companion.fakes.agentServices.status = 0;
  companion.act("restart");
  EXPECT_EQ(deeds(), Texts{"service: register"});
  EXPECT_EQ(outcome(), "restart -> status 1 ok Optional(true)<private:>");
}

TEST_F(AgentActionsTest, ARestartKickstartsWithKillUnderAHardStop) {
  companion.printsAlways(Companion::print());
  companion.kickstartGives(0);
  companion.act("restart");
  EXPECT_EQ(deeds(), (Texts{kickstartKill, "kernel: kill group 4242"}));
  EXPECT_EQ(companion.logLines(),
            (Texts{"log: default definition: loaded /core --serve exit 20 · bundled /core --serve exit 20 · "
                   "changed false",
                   "log: default hardstop pid 4242: killedGroup(4242, gone: true)",
                   "log: default restart -> status 1 ok Optional(true) kickstart 0<private:>"}));
}

TEST_F(AgentActionsTest, ARestartThatCannotPrintTheJobKickstartsItAndSignalsNobody) {
  Companion withoutLaunchctl;
  withoutLaunchctl.fakes.processes.always({"/bin/launchctl", "print"}, {.starts = false});
  Companion withoutFile;
  withoutFile.fakes.files.failsToOpen = true;
  for (auto* fresh : {&withoutLaunchctl, &withoutFile}) {
    fresh->kickstartGives(0);
    fresh->act("restart");
    EXPECT_EQ(fresh->fakes.ledger.count(kickstartKill), 1U);
    EXPECT_EQ(fresh->fakes.ledger.count("kernel: kill"), 0U);
    EXPECT_EQ(fresh->logLines().back(),
              "log: default restart -> status 1 ok Optional(true) kickstart 0<private:>");
  }
}

TEST_F(AgentActionsTest, ARestartWhoseCoreExitsInTimeSignalsNobody) {
  companion.printsAlways(Companion::print());
  companion.fakes.processes.once({"/bin/launchctl", "kickstart"},
                                 {.effect = [this] { companion.coreIsGone(); }});
  companion.act("restart");
  EXPECT_EQ(deeds(), Texts{kickstartKill});
  EXPECT_EQ(companion.logLines().at(1), "log: default hardstop pid 4242: exited");
}

TEST_F(AgentActionsTest, ARestartWhoseKickstartFailsWhileTheCoreRunsLeavesItAlone) {
  companion.printsAlways(Companion::print());
  companion.kickstartGives(5);
  companion.act("restart");
  EXPECT_EQ(deeds(), Texts{kickstartKill});
  EXPECT_EQ(companion.logLines().at(1), "log: default hardstop pid 4242: cancelled");
  EXPECT_EQ(outcome(), "restart -> status 1 ok Optional(true) kickstart 5<private:>");
}

TEST_F(AgentActionsTest, ARestartWhoseKickstartFailsWithoutACoreReseats) {
  companion.printsAlways(Companion::print(false));
  companion.kickstartGives(113);
  companion.act("restart");
  EXPECT_EQ(deeds(), (Texts{kickstartKill, "service: unregister", "service: register"}));
  EXPECT_EQ(outcome(), "restart -> status 1 ok Optional(true) kickstart 113<private:>");
}

TEST_F(AgentActionsTest, ARestartWhoseKickstartSucceedsDoesNotAskWhetherTheCoreRuns) {
  companion.printsAlways(Companion::print(false));
  companion.kickstartGives(0);
  companion.act("restart");
  EXPECT_EQ(deeds(), Texts{kickstartKill});
  EXPECT_EQ(companion.fakes.ledger.count("tool: /bin/launchctl print"), 2U);
}

TEST_F(AgentActionsTest, ARestartWithAChangedDefinitionReseatsInstead) {
  companion.printsAlways(Companion::print(true, "30"));
  companion.act("restart");
  EXPECT_EQ(deeds(), (Texts{"service: unregister", "kernel: kill group 4242", "service: register"}));
  EXPECT_EQ(outcome(), "restart -> status 1 ok Optional(true) reseated definition<private:>");
}

TEST_F(AgentActionsTest, ARestartWhoseReseatFailsReportsTheErrorAloneWithTheHardStop) {
  companion.config.writesReceipts = true;
  companion.printsAlways(Companion::print(true, "30"));
  companion.fakes.agentServices.registerError.emplace("D", 9, "what");
  companion.act("restart");
  EXPECT_EQ(outcome(), "restart -> status 0 ok Optional(false) error D 9<private: what>");
  const auto receipt =
      companion.fakes.files.contents.at("/Users/u/Library/Application Support/TamoPKG1/M2/900-core.json");
  EXPECT_THAT(receipt, ::testing::HasSubstr("\"hardStop\" : \"killedGroup(4242, gone: true)\""));
  EXPECT_THAT(receipt, ::testing::Not(::testing::HasSubstr("reseated")));
}

/// The kickstart had been stored before the reseat failed; nothing of it is reported.
TEST_F(AgentActionsTest, AnErrorDropsTheKickstartThatWasStored) {
  companion.kickstartGives(37);
  companion.printsAlways(Companion::print(false));
  companion.fakes.agentServices.unregisterError.emplace("D", 2, "stays");
  companion.act("register");
  EXPECT_EQ(outcome(), "register -> status 1 ok Optional(false) error D 2<private: stays>");
}

TEST_F(AgentActionsTest, SyncOfAnEnabledAgentWithAnUnchangedDefinitionDoesNothing) {
  companion.printsAlways(Companion::print());
  companion.act("sync");
  EXPECT_EQ(deeds(), Texts{});
  EXPECT_EQ(outcome(), "sync -> status 1 ok Optional(true)<private:>");
}

TEST_F(AgentActionsTest, SyncOfAnAgentThatIsNotEnabledLooksAtNothing) {
  companion.fakes.agentServices.status = 0;
  companion.act("sync");
  EXPECT_EQ(deeds(), Texts{});
  EXPECT_EQ(companion.fakes.ledger.count("tool: "), 0U);
  EXPECT_EQ(companion.logLines(), Texts{"log: default sync -> status 0 ok Optional(false)<private:>"});
}

TEST_F(AgentActionsTest, SyncWithAChangedDefinitionReseats) {
  companion.printsAlways(Companion::print(true, "30"));
  companion.act("sync");
  EXPECT_EQ(deeds(), (Texts{"service: unregister", "kernel: kill group 4242", "service: register"}));
  EXPECT_EQ(outcome(), "sync -> status 1 ok Optional(true) reseated definition<private:>");
}

TEST_F(AgentActionsTest, SyncWithAPrintThatFailsReseatsNothing) {
  companion.fakes.processes.always({"/bin/launchctl", "print"},
                                   {.status = 113, .output = Companion::print(true, "30")});
  companion.act("sync");
  EXPECT_EQ(deeds(), Texts{});
}

}  // namespace
}  // namespace tamo

#include <gtest/gtest.h>
#include <limits>

#include "companion.hpp"

namespace tamo {
namespace {

using Texts = std::vector<std::string>;

/// Every status but 1 is one of an agent that is not enabled, also one whose low 32 bits are 1.
constexpr std::array<std::int64_t, 6> notEnabled{0, 2, 3, 4, -1, 4294967297};
/// Every exit status but 0 is a failure; -1 is a launchctl that did not start or did not end.
constexpr std::array<std::int32_t, 8> failures{-1,
                                               1,
                                               3,
                                               113,
                                               127,
                                               255,
                                               std::numeric_limits<std::int32_t>::max(),
                                               std::numeric_limits<std::int32_t>::min()};

/// The routes at values beyond the usual ones, and what they must not look at.
class AgentActionsValuesTest : public ::testing::Test {
 protected:
  static Texts deedsOf(const Companion& companion) {
    return companion.fakes.ledger.textsOf({"service: register", "service: unregister", "tool: /bin/launchctl",
                                           "sockets: ", "log: default def"});
  }
  static std::string kickstarted(const std::string& action, std::int32_t status) {
    return "log: default " + action + " -> status 1 ok Optional(true) kickstart " + std::to_string(status) +
           "<private:>";
  }

  const std::string kickstart = "tool: /bin/launchctl kickstart gui/501/studio.pell.tamo.core";
  const std::string kickstartKill = "tool: /bin/launchctl kickstart -k gui/501/studio.pell.tamo.core";
  const std::string print = "tool: /bin/launchctl print gui/501/studio.pell.tamo.core";
  const std::string connects = "sockets: connect " + Companion::data;
  Companion companion;
};

TEST_F(AgentActionsValuesTest, AnAgentThatIsNotEnabledIsRegisteredByEachOfThreeActionsAndNothingElse) {
  for (const auto status : notEnabled) {
    for (const std::string action : {"register", "reseat", "restart"}) {
      Companion fresh;
      fresh.fakes.agentServices.status = status;
      fresh.act(action);
      EXPECT_EQ(deedsOf(fresh), Texts{"service: register"}) << action << " " << status;
    }
  }
}

TEST_F(AgentActionsValuesTest, ASyncOfAnAgentThatIsNotEnabledDoesNothing) {
  for (const auto status : notEnabled) {
    Companion fresh;
    fresh.fakes.agentServices.status = status;
    fresh.act("sync");
    EXPECT_EQ(deedsOf(fresh), Texts{}) << status;
  }
}

/// Not even one that is not registered is spared the request: what comes of it is service management's.
TEST_F(AgentActionsValuesTest, AnAgentOfAnyStatusIsUnregistered) {
  for (const std::int64_t status : {0, 1, 2, 3, 4}) {
    Companion fresh;
    fresh.fakes.agentServices.status = status;
    fresh.act("unregister");
    EXPECT_EQ(deedsOf(fresh), Texts{"service: unregister"}) << status;
  }
}

TEST_F(AgentActionsValuesTest, ARegisterWhoseKickstartFailsByAnyStatusAsksTheSockets) {
  for (const auto status : failures) {
    Companion fresh;
    fresh.kickstartGives(status);
    fresh.fakes.localSockets.accepting = {Companion::data + "talk.sock"};
    fresh.act("register");
    EXPECT_EQ(deedsOf(fresh), (Texts{kickstart, connects + "core.sock", connects + "talk.sock"})) << status;
    EXPECT_EQ(fresh.logLines(), Texts{kickstarted("register", status)});
  }
}

TEST_F(AgentActionsValuesTest, ARestartWhoseKickstartFailsByAnyStatusReseatsWithoutACoreAndAsksNoSocket) {
  for (const auto status : failures) {
    Companion fresh;
    fresh.printsAlways(Companion::print(false));
    fresh.kickstartGives(status);
    fresh.fakes.localSockets.accepting = {Companion::data + "core.sock"};
    fresh.act("restart");
    EXPECT_EQ(fresh.fakes.ledger.textsOf({"service: register", "service: unregister", "sockets: "}),
              (Texts{"service: unregister", "service: register"}))
        << status;
    EXPECT_EQ(fresh.logLines().back(), kickstarted("restart", status));
  }
}

TEST_F(AgentActionsValuesTest, ALaunchctlThatDoesNotStartIsAKickstartThatFailed) {
  companion.fakes.processes.always({"/bin/launchctl"}, {.starts = false});
  companion.act("register");
  EXPECT_EQ(companion.fakes.ledger.count("service: unregister"), 0U) << "a job in doubt counts as running";
  EXPECT_EQ(companion.logLines(), Texts{kickstarted("register", -1)});
}

TEST_F(AgentActionsValuesTest, ARegisterOfAnEnabledAgentComparesNoDefinition) {
  companion.printsAlways(Companion::print(true, "30"));
  companion.kickstartGives(0);
  companion.perform("register");
  EXPECT_EQ(companion.logLines(), Texts{kickstarted("register", 0)});
  EXPECT_EQ(companion.fakes.ledger.count("files: read /Applications/Tamo.app/Contents/Library/"), 0U);
}

/// Without the user's entry there is no data directory, and launchd alone is left to ask.
TEST_F(AgentActionsValuesTest, ARegisterWithoutADataDirectoryReseatsWhenLaunchdReportsNobody) {
  companion.fakes.user.entry.reset();
  companion.kickstartGives(37);
  companion.printsAlways(Companion::print(false));
  companion.act("register");
  EXPECT_EQ(companion.fakes.ledger.textsOf({"service: register", "service: unregister", "sockets: "}),
            (Texts{"service: unregister", "service: register"}));
}

TEST_F(AgentActionsValuesTest, ARegisterWhoseKickstartSucceedsAsksNeitherSocketNorLaunchdNorTheUser) {
  companion.kickstartGives(0);
  companion.perform("register");
  EXPECT_EQ(deedsOf(companion), Texts{kickstart});
  EXPECT_EQ(companion.fakes.ledger.count("files: exists"), 0U);
}

/// Enabled is what the agent was when the route began; it may be anything by the time it is kickstarted.
TEST_F(AgentActionsValuesTest, ARouteReadsTheStatusOnceForItsDecision) {
  for (const std::string action : {"restart", "register"}) {
    Companion fresh;
    fresh.fakes.agentServices.nextStatuses = {1, 0, 0, 0, 0};
    fresh.printsAlways(Companion::print(false));
    fresh.kickstartGives(0);
    fresh.act(action);
    EXPECT_EQ(fresh.fakes.ledger.count("service: register"), 0U) << action;
    EXPECT_EQ(fresh.fakes.ledger.count("service: status"), 5U) << action;
    EXPECT_EQ(fresh.fakes.ledger.count("tool: /bin/launchctl kickstart"), 1U) << action;
  }
}

TEST_F(AgentActionsValuesTest, AnUnregisterReadsNoStatusBeforeItIsDone) {
  companion.perform("unregister");
  const auto deeds = companion.fakes.ledger.textsOf({"service: "});
  EXPECT_EQ(deeds, (Texts{"service: agent studio.pell.tamo.core.plist", "service: unregister",
                          "service: status -> 0", "service: status -> 0", "service: status -> 0"}));
}

/// A reseat that a failed kickstart led to is none that the definition asked for.
TEST_F(AgentActionsValuesTest, OnlyAChangedDefinitionIsReportedAsTheReasonForAReseat) {
  for (const std::string action : {"restart", "register", "reseat"}) {
    Companion fresh;
    fresh.config.writesReceipts = true;
    fresh.printsAlways(Companion::print(false));
    fresh.kickstartGives(3);
    fresh.act(action);
    EXPECT_EQ(fresh.fakes.ledger.count("service: unregister"), 1U) << action;
    EXPECT_EQ(fresh.receipt().find("reseated"), std::string::npos) << action;
  }
}

TEST_F(AgentActionsValuesTest, AReseatForAChangedDefinitionKickstartsNothingAndSaysSo) {
  for (const std::string action : {"restart", "sync"}) {
    Companion fresh;
    fresh.config.writesReceipts = true;
    fresh.printsAlways(Companion::print(false, "30"));
    fresh.act(action);
    EXPECT_EQ(fresh.fakes.ledger.count("tool: /bin/launchctl kickstart"), 0U) << action;
    EXPECT_NE(fresh.receipt().find("  \"reseated\" : \"definition\",\n"), std::string::npos) << action;
  }
}

TEST_F(AgentActionsValuesTest, AReseatComparesNoDefinition) {
  companion.printsAlways(Companion::print(false, "30"));
  companion.act("reseat");
  EXPECT_EQ(deedsOf(companion), (Texts{print, "service: unregister", "service: register"}));
}

}  // namespace
}  // namespace tamo

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/core_main.hpp"
#include "companion.hpp"

namespace tamo {
namespace {

using Texts = std::vector<std::string>;

/// Where each constant of a build goes, and where it does not: every one has a value of its own here.
class ConfigurationTest : public ::testing::Test {
 protected:
  [[nodiscard]] Texts noted(const std::vector<std::string_view>& prefixes) const {
    return companion.fakes.ledger.textsOf(prefixes);
  }
  /// A Core that hangs, asked to restart: its hard stop looks for the markers of a revert.
  void restarts() {
    companion.printsAlways(Companion::print());
    companion.kickstartGives(0);
    companion.act("restart");
  }
  /// A Core that speaks through its sockets alone.
  void registersInVain() {
    companion.kickstartGives(37);
    companion.printsAlways(Companion::print(false));
    companion.act("register");
  }

  const std::string agents =
      "/Applications/Tamo.app/Contents/Library/LoginItems/Tamo Core.app/Contents/Library/LaunchAgents/";
  const std::string marker = "core.db.revert.partial";
  const std::string staged = "Library/Application Support/Tamo/staged/Tamo.app";
  Companion companion;
};

TEST_F(ConfigurationTest, TheLabelNamesTheAgentTheLockTheJobAndTheDefinition) {
  companion.config.label = "a.label";
  companion.defines("a.label");
  restarts();
  const std::string print = "tool: /bin/launchctl print gui/501/a.label";
  EXPECT_EQ(noted({"service: agent", "lock: open", "files: read " + agents, "tool: /bin/launchctl"}),
            (Texts{"service: agent a.label.plist", "lock: open /tmp/of-the-user/a.label.job.lock",
                   "files: read " + agents + "a.label.plist", print, print,
                   "tool: /bin/launchctl kickstart -k gui/501/a.label"}));
}

TEST_F(ConfigurationTest, TheIdentifierOfTheCoreNamesTheLogAndNothingElse) {
  companion.config.coreBundleID = "an.identifier";
  restarts();
  EXPECT_EQ(noted({"logger: "}), Texts{"logger: an.identifier lifecycle"});
  for (const auto& deed : companion.fakes.ledger.texts())
    EXPECT_TRUE(deed.starts_with("logger: ") || deed.find("an.identifier") == std::string::npos) << deed;
}

TEST_F(ConfigurationTest, TheSchemeIsThatOfTheUrlsThatAreTaken) {
  companion.config.urlScheme = "a-scheme";
  CoreDelegate delegate(companion.fakes.platform, companion.config, {"/program"});
  delegate.application({"a-scheme://status", "tamo-core://sync"});
  EXPECT_EQ(delegate.requested(), "status");
}

TEST_F(ConfigurationTest, EveryLineGoesThroughTheOneLogger) {
  companion.config.writesReceipts = true;
  companion.fakes.files.failsToCreateDirectories = true;
  restarts();
  EXPECT_EQ(companion.logLines().size(), 4U);
  EXPECT_EQ(companion.fakes.ledger.count("logger: "), 1U);
}

TEST_F(ConfigurationTest, AMarkerBelowTheProofHomeSparesTheCore) {
  companion.config.proofHome = "/proof";
  companion.fakes.files.contents["/proof/Library/Application Support/Tamo/" + marker] = "";
  restarts();
  EXPECT_EQ(companion.logLines().at(1),
            "log: default hardstop pid 4242: spared(\"revert_restoring\", gone: false)");
  EXPECT_EQ(companion.fakes.ledger.count("kernel: kill"), 0U);
}

TEST_F(ConfigurationTest, WithAProofHomeAMarkerInTheRealHomeSparesNobodyAndIsNotLookedFor) {
  companion.config.proofHome = "/proof";
  companion.fakes.files.contents[Companion::data + marker] = "";
  restarts();
  EXPECT_EQ(noted({"kernel: kill"}), Texts{"kernel: kill group 4242"});
  EXPECT_EQ(companion.fakes.ledger.count("files: exists " + Companion::data), 0U);
}

TEST_F(ConfigurationTest, WithoutAProofHomeTheMarkersAreThoseInTheRealHome) {
  companion.fakes.files.contents[Companion::data + marker] = "";
  restarts();
  EXPECT_EQ(companion.fakes.ledger.count("kernel: kill"), 0U);
}

TEST_F(ConfigurationTest, WithAProofHomeTheSocketsAreThoseBelowItAlone) {
  companion.config.proofHome = "/proof";
  companion.fakes.localSockets.accepting = {Companion::data + "core.sock", Companion::data + "talk.sock"};
  registersInVain();
  EXPECT_EQ(
      noted({"sockets: ", "service: unregister"}),
      (Texts{"sockets: connect /proof/Library/Application Support/Tamo/core.sock",
             "sockets: connect /proof/Library/Application Support/Tamo/talk.sock", "service: unregister"}));
}

TEST_F(ConfigurationTest, ASocketBelowTheProofHomeSpeaksForTheCore) {
  companion.config.proofHome = "/proof/";
  companion.fakes.localSockets.accepting = {"/proof//Library/Application Support/Tamo/talk.sock"};
  registersInVain();
  EXPECT_EQ(companion.fakes.ledger.count("service: unregister"), 0U);
}

/// Present and empty is present: the refusal is off, and the data lie below the root.
TEST_F(ConfigurationTest, AnEmptyProofHomeIsAHome) {
  companion.config.proofHome = "";
  companion.runsFrom(Companion::downloads);
  registersInVain();
  EXPECT_EQ(companion.fakes.ledger.count("log: error"), 0U);
  EXPECT_EQ(noted({"sockets: "}), (Texts{"sockets: connect /Library/Application Support/Tamo/core.sock",
                                         "sockets: connect /Library/Application Support/Tamo/talk.sock"}));
}

TEST_F(ConfigurationTest, WithAProofHomeReceiptLockAndPrintStayWhereTheyAre) {
  companion.config.proofHome = "/proof";
  companion.config.writesReceipts = true;
  restarts();
  EXPECT_NE(companion.receipt(), "");
  for (const auto& deed : noted({"files: write", "files: create", "files: open", "lock: open"}))
    EXPECT_EQ(deed.find("/proof"), std::string::npos) << deed;
}

/// Whether a copy has to move is asked about the real home, also of a test build.
TEST_F(ConfigurationTest, WithAProofHomeTheStagedCopyIsThatInTheRealHome) {
  companion.config.proofHome = "/proof";
  companion.fakes.agentServices.status = 0;
  companion.runsFrom("/Users/u/" + staged);
  companion.run({});
  EXPECT_EQ(companion.logLines(), Texts{"log: default register -> status 1 ok Optional(true)<private:>"});
}

TEST_F(ConfigurationTest, WithAProofHomeACopyThatIsStagedBelowItMovesAllTheSame) {
  companion.config.proofHome = "/proof";
  companion.runsFrom("/proof/" + staged);
  companion.toolsMove();
  companion.run({});
  EXPECT_EQ(companion.logLines(), Texts{"log: default move-to-applications -> moved"});
}

/// Nothing is kept from the launch: the user database is asked when the directory is needed.
TEST_F(ConfigurationTest, TheSocketsDirectoryIsWorkedOutWhenItIsNeeded) {
  const auto homeChanges = [this] { companion.fakes.user.entry->home = "/Users/v"; };
  companion.fakes.processes.once({"/bin/launchctl", "kickstart"}, {.status = 37, .effect = homeChanges});
  companion.printsAlways(Companion::print());
  companion.act("register");
  EXPECT_EQ(companion.fakes.ledger.count("sockets: connect /Users/v/Library/"), 2U);
}

TEST_F(ConfigurationTest, TheMarkersDirectoryIsWorkedOutWhenItIsNeeded) {
  const auto homeChanges = [this] { companion.fakes.user.entry->home = "/Users/v"; };
  companion.fakes.processes.once({"/bin/launchctl", "print"},
                                 {.output = Companion::print(), .effect = homeChanges});
  restarts();
  EXPECT_EQ(companion.fakes.ledger.count("files: exists /Users/v/Library/"), 3U);
}

TEST_F(ConfigurationTest, MainHandsTheArgumentsAndTheConfigurationOn) {
  companion.config.writesReceipts = true;
  companion.fakes.application.loop = [this] {
    companion.fakes.application.delegate->applicationDidFinishLaunching();
    companion.fakes.mainQueue.runUntilIdle();
  };
  CoreMain::main(companion.fakes.platform, companion.config, {"--core-action", "status"});
  EXPECT_THAT(companion.receipt(), ::testing::HasSubstr("\"operation\" : \"status\""));
}

}  // namespace
}  // namespace tamo

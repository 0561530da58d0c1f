#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

#include "stage.hpp"

/// The other actions, the guard and the lock, end to end, with the exact lines in the log.
namespace tamo::scenario {
namespace {

using std::chrono::milliseconds;
using Texts = std::vector<std::string>;

std::string outcomeLine(const std::string& action, int status, bool ok, const std::string& error = "") {
  return "default {public:" + action + "} -> status {public:" + std::to_string(status) +
         "} ok {public:Optional(" + (ok ? "true" : "false") + ")}{public:}{public:" + error + "}{private}";
}

std::string refusal(const std::string& action, const std::string& app) {
  return "error {public:" + action + "} refused: {public:tamo.test_copy_refused_live_data app=" + app +
         " (only /Applications/Tamo.app opens the founder's data and Core)}";
}

TEST(ActionScenario, RegisterStartsTheCoreAndUnregisterEndsIt) {
  const Stage stage({.registered = false});
  EXPECT_EQ(stage.act("status").status, 0);
  stage.act("register");
  const auto core = stage.corePid();
  EXPECT_TRUE(runs(core));
  stage.act("status");
  stage.act("unregister");
  EXPECT_FALSE(runs(core));
  EXPECT_EQ(stage.lines(), (Texts{outcomeLine("status", 0, true), outcomeLine("register", 1, true),
                                  outcomeLine("status", 1, true), outcomeLine("unregister", 0, true)}));
}

TEST(ActionScenario, RegisterOfAnEnabledAgentKickstartsTheCoreThatRuns) {
  const Stage stage;
  const auto core = stage.corePid();
  stage.act("register");
  EXPECT_EQ(stage.lines(), Texts{"default {public:register} -> status {public:1} ok {public:Optional(true)}"
                                 "{public: kickstart 0}{public:}{private}"});
  EXPECT_EQ(stage.corePid(), core);
}

TEST(ActionScenario, RegisterWithApprovalWithheldOpensTheSettings) {
  const Stage stage({.registered = false});
  stage.set("approval", "withheld");
  stage.act("register");
  EXPECT_EQ(stage.lines(), Texts{outcomeLine("register", 2, false)});
  EXPECT_TRUE(std::filesystem::exists(stage.root().control("login-items-opened")));
  EXPECT_EQ(stage.corePidNow(), 0);
}

TEST(ActionScenario, ARegisterErrorIsReportedWithItsDescriptionHidden) {
  const Stage stage({.registered = false});
  stage.set("next-register-error", "SMAppServiceErrorDomain\t1\tOperation not permitted");
  stage.act("register");
  stage.set("log-private", "shown");
  stage.set("next-register-error", "SMAppServiceErrorDomain\t1\tOperation not permitted");
  stage.act("register");
  const auto hidden = outcomeLine("register", 0, false, " error SMAppServiceErrorDomain 1");
  const auto shown = hidden.substr(0, hidden.rfind("{private}")) + "{private: Operation not permitted}";
  EXPECT_EQ(stage.lines(), (Texts{hidden, shown}));
}

TEST(ActionScenario, ReseatReplacesTheCore) {
  const Stage stage;
  const auto before = stage.corePid();
  stage.act("reseat");
  EXPECT_EQ(stage.lines(), (Texts{hardStopLine(before, "exited"), outcomeLine("reseat", 1, true)}));
  EXPECT_NE(stage.corePid(), before);
}

TEST(ActionScenario, AReseatOfACoreThatIgnoresTheRequestKillsItUnderTheUnregister) {
  const Stage stage({.core = "term=ignore"});
  const auto before = stage.corePid();
  stage.act("reseat");
  EXPECT_EQ(stage.lines(),
            (Texts{hardStopLine(before, "killedGroup(" + std::to_string(before) + ", gone: true)"),
                   outcomeLine("reseat", 1, true)}));
}

TEST(ActionScenario, AReseatWhoseUnregisterFailsLeavesTheCoreAlone) {
  const Stage stage({.core = "term=ignore"});
  const auto before = stage.corePid();
  stage.set("next-unregister-error", "SMAppServiceErrorDomain\t5\tno");
  stage.act("reseat");
  EXPECT_EQ(stage.lines(), (Texts{hardStopLine(before, "cancelled"),
                                  outcomeLine("reseat", 1, false, " error SMAppServiceErrorDomain 5")}));
  EXPECT_EQ(stage.corePid(), before);
}

TEST(ActionScenario, AReseatWhoseRegisterFailsLeavesTheAgentUnregistered) {
  const Stage stage;
  const auto before = stage.corePid();
  stage.set("next-register-error", "SMAppServiceErrorDomain\t8\tno");
  stage.act("reseat");
  EXPECT_EQ(stage.lines(), (Texts{hardStopLine(before, "exited"),
                                  outcomeLine("reseat", 0, false, " error SMAppServiceErrorDomain 8")}));
  EXPECT_FALSE(runs(before));
}

TEST(ActionScenario, AnUnknownNameIsAnErrorOfOurOwn) {
  const Stage stage;
  EXPECT_EQ(stage.act("audit-install").status, 0);
  EXPECT_EQ(stage.lines(), Texts{outcomeLine("audit-install", 1, false, " error TamoCore 64")});
}

TEST(ActionScenario, TheMoveOfTheInstalledCopyIsRefused) {
  const Stage stage;
  stage.act("move-to-applications");
  EXPECT_EQ(stage.lines(), Texts{"error move refused: this Tamo doesn't need moving"});
}

TEST(ActionScenario, ADownloadedCopyIsRefusedAndMayOnlyAskForTheStatus) {
  const Stage stage;
  const auto core = stage.corePid();
  stage::placeCopy(stage.root(), TAMO_BINARY_DIR "/bin", {.where = "downloaded"});
  Stage::finish(stage.start({"--core-action", "restart"}, "downloaded"));
  Stage::finish(stage.start({"--core-action", "status"}, "downloaded"));
  EXPECT_EQ(stage.lines(), (Texts{refusal("restart", stage.root().home() + "/Downloads/Tamo.app"),
                                  outcomeLine("status", 1, true)}));
  EXPECT_EQ(stage.corePid(), core);
}

TEST(ActionScenario, TheInstalledCopyThroughASymbolicLinkIsRefused) {
  const Stage stage;
  stage::placeCopy(stage.root(), TAMO_BINARY_DIR "/bin", {.where = "linked"});
  Stage::finish(stage.start({"--core-action", "sync"}, "linked"));
  EXPECT_EQ(stage.lines(), Texts{refusal("sync", stage.root().home() + "/Desktop/Tamo.app")});
}

TEST(ActionScenario, TheStagedCopyMayAct) {
  const Stage stage({.registered = false});
  stage::placeCopy(stage.root(), TAMO_BINARY_DIR "/bin", {.where = "staged"});
  Stage::finish(stage.start({"--core-action", "register"}, "staged"));
  EXPECT_EQ(stage.lines(), Texts{outcomeLine("register", 1, true)});
}

TEST(ActionScenario, AnInstalledCopyOfAnotherIdentifierIsRefused) {
  const Stage stage;
  stage::placeCopy(stage.root(), TAMO_BINARY_DIR "/bin", {.bundleID = "studio.pell.Tamo.dev"});
  stage.act("sync");
  EXPECT_EQ(stage.lines(), Texts{refusal("sync", "/Applications/Tamo.app")});
}

TEST(ActionScenario, ATestBuildWithAProofHomeActsFromAnywhereAndLeavesAReceiptInTheRealHome) {
  const Stage stage({.registered = false});
  stage::placeCopy(stage.root(), TAMO_BINARY_DIR "/bin",
                   {.where = "downloaded", .companion = stage::Companion::Proof});
  const auto ended = Stage::finish(stage.start({"--core-action", "register"}, "downloaded"));
  EXPECT_EQ(stage.lines(), Texts{outcomeLine("register", 1, true)});
  EXPECT_TRUE(stage
                  .file(stage.root().home() + "/Library/Application Support/TamoPKG1/M2/" +
                        std::to_string(ended.pid) + "-core.json")
                  .has_value());
}

TEST(ActionScenario, AnUrlReplacesTheSwitchWhileTheIntakeLasts) {
  const Stage stage;
  const auto companion = stage.start({"--core-action", "bogus"});
  stage.send(companion, "tamo-core://restart\nTAMO-CORE://reseat\ntamo-core://status\n");
  Stage::finish(companion);
  EXPECT_EQ(stage.lines(), Texts{outcomeLine("status", 1, true)});
}

TEST(ActionScenario, AnUrlThatStartsTheCompanionIsItsAction) {
  const Stage stage;
  Stage::finish(stage.start({}, "installed", "tamo-core://status"));
  Stage::finish(stage.start({"--core-action", "bogus"}, "installed", "tamo-core://status"));
  EXPECT_EQ(stage.lines(),
            (Texts{outcomeLine("status", 1, true), outcomeLine("bogus", 1, false, " error TamoCore 64")}));
}

TEST(ActionScenario, TwoCompanionsActOneAfterTheOther) {
  const Stage stage({.core = "term=ignore"});
  const auto before = stage.corePid();
  // Only this Core misbehaves: the unregister would otherwise wait for launchd's exit timeout of the next one.
  stage.set("core", "term=obey");
  const auto first = stage.start({"--core-action", "reseat"});
  std::this_thread::sleep_for(milliseconds(200));
  const auto second = stage.start({"--core-action", "unregister"});
  EXPECT_LT(Stage::finish(first).after, milliseconds(5000));
  const auto waited = Stage::finish(second).after;
  EXPECT_GE(waited, milliseconds(2000)) << "it did not wait for the lock";
  EXPECT_EQ(stage.lines(),
            (Texts{hardStopLine(before, "killedGroup(" + std::to_string(before) + ", gone: true)"),
                   outcomeLine("reseat", 1, true), outcomeLine("unregister", 0, true)}));
}

TEST(ActionScenario, ATerminateRequestThatReturnsEndsTheProcessAfterTheUnlock) {
  const Stage stage;
  stage.set("terminate", "returns");
  EXPECT_EQ(stage.act("bogus").status, 0);
  EXPECT_EQ(stage.lines(), Texts{outcomeLine("bogus", 1, false, " error TamoCore 64")});
}

TEST(ActionScenario, ALaunchctlThatHangsIsGivenUpAfterFiveSeconds) {
  const Stage stage;
  stage.set("tool-launchctl", "* hang");
  const auto ended = stage.act("sync");
  EXPECT_GE(ended.after, milliseconds(5400));
  EXPECT_LT(ended.after, milliseconds(6400));
  const auto lines = stage.lines();
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_THAT(lines.at(0), ::testing::StartsWith(
                               "default definition: loaded {public:unknown} exit {public:-} · bundled "));
  EXPECT_THAT(lines.at(0), ::testing::EndsWith("· changed {public:false}"));
  EXPECT_EQ(lines.at(1), outcomeLine("sync", 1, true));
}

TEST(ActionScenario, NoPrintFileIsLeftBehind) {
  const Stage stage;
  stage.act("sync");
  const auto folder = stage.root().host("/private/var/folders/st/tamo/T");
  Texts left;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    left.push_back(entry.path().filename());
  EXPECT_EQ(left, Texts{"studio.pell.tamo.core.job.lock"});
}

}  // namespace
}  // namespace tamo::scenario

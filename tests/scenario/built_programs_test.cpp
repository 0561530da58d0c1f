#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/posix/argument_vector.hpp"
#include "platform/stage/stream_sockets.hpp"
#include "stage.hpp"

/// The programs as they are built: what the shipped one never does, and what each test build does instead.
/// Unit tests show what follows from a constant; which constants a program holds is seen here.
namespace tamo::scenario {
namespace {

using stage::Companion;
using Texts = std::vector<std::string>;

/// A companion with these words, the first of them its name, and these settings of the environment.
int runWith(const Stage& stage, std::vector<std::string> words, std::vector<std::string> environment = {}) {
  const auto program = stage.root().host(stage::companionProgram(stage::copyPath(stage.root(), "installed")));
  environment.push_back("TAMO_STAGE=" + stage.root().directory());
  const Started started{::fork(), std::chrono::steady_clock::now()};
  if (started.pid == 0) {
    const int null = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    ::dup2(null, STDERR_FILENO);
    ::execve(program.c_str(), platform::vectorOf(words).data(), platform::vectorOf(environment).data());
    ::_exit(127);
  }
  return Stage::finish(started).status;
}

/// The receipts in the real home and in that of the test build, each with its home.
Texts receiptsOf(const Stage& stage) {
  Texts found;
  for (const auto& home : {stage.root().home(), std::string("/Users/proof")}) {
    const auto folder = stage.root().host(home + "/Library/Application Support/TamoPKG1");
    if (!std::filesystem::exists(folder)) continue;
    for (const auto& item : std::filesystem::recursive_directory_iterator(folder))
      if (item.is_regular_file()) found.push_back(home + " " + item.path().filename().string());
  }
  return found;
}

bool isRefused(const std::string& line) {
  return line.starts_with("error ") && line.find(" refused: ") != std::string::npos;
}

TEST(ShippedScenario, TheShippedProgramLeavesNoReceiptOfAnyAction) {
  const Stage stage;
  for (const auto* action : {"status", "sync", "register", "reseat", "restart", "unregister", "bogus"})
    EXPECT_EQ(stage.act(action).status, 0) << action;
  EXPECT_EQ(receiptsOf(stage), Texts{});
  const auto folder = stage.root().home() + "/Library/Application Support/TamoPKG1";
  EXPECT_FALSE(std::filesystem::exists(stage.root().host(folder)));
}

TEST(ShippedScenario, TheShippedProgramIsRefusedElsewhereAndActsOnNothing) {
  const Stage stage({.registered = false});
  stage::placeCopy(stage.root(), TAMO_BINARY_DIR "/bin", {.where = "downloaded"});
  Stage::finish(stage.start({"--core-action", "register"}, "downloaded"));
  ASSERT_EQ(stage.lines().size(), 1U);
  EXPECT_TRUE(isRefused(stage.lines().front()));
  EXPECT_EQ(stage.corePidNow(), 0);
}

/// Nothing but the command line and URLs is read when it runs.
TEST(ShippedScenario, NoSettingOfTheEnvironmentChangesTheShippedProgram) {
  const Stage stage({.registered = false});
  stage::placeCopy(stage.root(), TAMO_BINARY_DIR "/bin", {.bundleID = "studio.pell.Tamo.dev"});
  EXPECT_EQ(runWith(stage, {"program", "--core-action", "register"},
                    {"TAMO_WRITES_RECEIPTS=true", "TAMO_PROOF_HOME=/Users/proof", "WRITES_RECEIPTS=1",
                     "PROOF_HOME=/Users/proof", "HOME=/Users/proof", "CFFIXED_USER_HOME=/Users/proof"}),
            0);
  ASSERT_EQ(stage.lines().size(), 1U);
  EXPECT_TRUE(isRefused(stage.lines().front()));
  EXPECT_EQ(receiptsOf(stage), Texts{});
}

TEST(ShippedScenario, TheProgramsOwnNameIsTheFirstOfItsWords) {
  const Stage stage;
  EXPECT_EQ(runWith(stage, {"--core-action", "status", "--core-action", "bogus"}), 0);
  ASSERT_EQ(stage.lines().size(), 1U);
  EXPECT_TRUE(stage.lines().front().starts_with("default {public:status} -> status {public:1}"));
}

TEST(ShippedScenario, TheBuildWithReceiptsLeavesOneOfEachRunAndIsRefusedElsewhere) {
  const Stage stage({.registered = false, .companion = Companion::Receipts});
  const auto first = stage.act("status");
  const auto second = stage.act("bogus");
  stage::placeCopy(stage.root(), TAMO_BINARY_DIR "/bin",
                   {.where = "downloaded", .companion = Companion::Receipts});
  Stage::finish(stage.start({"--core-action", "sync"}, "downloaded"));
  auto receipts = receiptsOf(stage);
  std::ranges::sort(receipts);
  Texts expected{stage.root().home() + " " + std::to_string(first.pid) + "-core.json",
                 stage.root().home() + " " + std::to_string(second.pid) + "-core.json"};
  std::ranges::sort(expected);
  EXPECT_EQ(receipts, expected);
  ASSERT_EQ(stage.lines().size(), 3U);
  EXPECT_TRUE(isRefused(stage.lines().back()));
}

/// launchd neither starts the Core nor tells of it, and the Core's own sockets listen in the real home: whether
/// the agent is reseated shows which home's sockets a program asks.
class DeafLaunchdScenario : public ::testing::Test {
 protected:
  /// Whether a register of this build leaves the Core as it is.
  static bool leavesTheCore(const Stage& stage) {
    const auto before = stage.corePid();
    stage.set("tool-launchctl", "kickstart fail 5\nprint fail 113");
    EXPECT_EQ(stage.act("register").status, 0);
    stage.set("tool-launchctl", "");
    return stage.corePid() == before;
  }

  static constexpr auto listens = "sockets=both";
};

TEST_F(DeafLaunchdScenario, TheShippedProgramAsksTheSocketsInTheRealHome) {
  const Stage stage({.core = listens});
  EXPECT_TRUE(leavesTheCore(stage));
}

TEST_F(DeafLaunchdScenario, TheTestBuildAsksNoSocketInTheRealHome) {
  const Stage stage({.core = listens, .companion = Companion::Proof});
  EXPECT_FALSE(leavesTheCore(stage));
}

TEST_F(DeafLaunchdScenario, TheTestBuildAsksTheSocketsBelowItsOwnHome) {
  const Stage stage({.core = "sockets=none", .companion = Companion::Proof});
  const auto folder = stage.root().host("/Users/proof/Library/Application Support/Tamo");
  std::filesystem::create_directories(folder);
  const auto listener = stage::listeningAt(folder + "/talk.sock");
  ASSERT_TRUE(listener);
  EXPECT_TRUE(leavesTheCore(stage));
}

}  // namespace
}  // namespace tamo::scenario

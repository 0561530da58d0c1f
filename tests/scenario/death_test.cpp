#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <thread>

#include "scenario/move_stage.hpp"

/// SIGKILL of a real companion at many moments of its course. What it had started runs on; the next one has to
/// find the lock free and come out as on a stage that never saw the death.
namespace tamo::scenario {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;
using testing::StartsWith;

/// Long enough for every tool and every Core of these tests to come to rest.
constexpr milliseconds restTime(1500);
/// A companion that had to wait for the lock would take a minute.
constexpr milliseconds unhindered(6000);

/// After the start of the companion. A moment near the end of its course may find that it has ended well.
struct Moment {
  int milliseconds;
  bool mayBeTooLate = false;
};

void killAt(const Moment& moment, const Started& companion) {
  std::this_thread::sleep_until(companion.at + milliseconds(moment.milliseconds));
  ::kill(companion.pid, SIGKILL);
  const auto status = Stage::finish(companion).status;
  EXPECT_TRUE(status == SIGKILL || (moment.mayBeTooLate && status == 0)) << status;
}

/// The print files in the stage's temporary directory, without that of the dead.
std::vector<std::string> printsLeft(const Stage& stage, pid_t dead) {
  std::vector<std::string> found;
  for (const auto& item : fs::recursive_directory_iterator(stage.root().directory())) {
    const auto name = item.path().filename().string();
    const bool isPrint =
        name.starts_with("tamo-core-print-") && name != "tamo-core-print-" + std::to_string(dead) + ".txt";
    if (isPrint) found.push_back(name);
  }
  return found;
}

struct RestartDeath {
  const char* core;
  Moment moment;
};

void PrintTo(const RestartDeath& death, std::ostream* out) {
  *out << death.core << "-at-" << death.moment.milliseconds << "ms";
}

class RestartDeathScenario : public testing::TestWithParam<RestartDeath> {};

/// The Core of the killed run is gone by the end, whoever saw to that, and one Core runs.
TEST_P(RestartDeathScenario, TheNextRestartIsClean) {
  const Stage stage({.core = GetParam().core});
  ASSERT_NE(stage.corePid(), 0);
  const auto dying = stage.start({"--core-action", "restart"});
  killAt(GetParam().moment, dying);
  const auto before = stage.corePid();
  const auto ended = stage.act("restart");
  EXPECT_EQ(ended.status, 0);
  EXPECT_LT(ended.after, unhindered);
  ASSERT_FALSE(stage.lines().empty());
  EXPECT_THAT(stage.lines().back(),
              StartsWith("default {public:restart} -> status {public:1} ok {public:Optional(true)}"));
  const auto after = stage.corePid();
  EXPECT_TRUE(runs(after));
  EXPECT_NE(after, before);
  EXPECT_EQ(printsLeft(stage, dying.pid), std::vector<std::string>());
}

INSTANTIATE_TEST_SUITE_P(
    Moments, RestartDeathScenario,
    testing::Values(RestartDeath{"term=obey", {200}}, RestartDeath{"term=obey", {405}},
                    RestartDeath{"term=obey", {430, true}}, RestartDeath{"term=obey", {460, true}},
                    RestartDeath{"term=late:500", {500}}, RestartDeath{"term=late:500", {800}},
                    RestartDeath{"term=ignore", {1500}}, RestartDeath{"term=ignore", {2300}}));

void PrintTo(const Moment& moment, std::ostream* out) {
  *out << "at-" << moment.milliseconds << "ms";
}

class MoveDeathScenario : public testing::TestWithParam<Moment> {};

/// Nothing is lost: the application is whole in the end, in the one place or the other, and the result is
/// there to be read.
TEST_P(MoveDeathScenario, TheNextMoveEndsWithTheWholeApplicationInstalled) {
  const MoveStage stage;
  stage.stage().set("tool-ditto", "* slow 300");
  const auto source = stage.tree(downloadedPath);
  const auto dying = stage.startMove();
  killAt(GetParam(), dying);
  std::this_thread::sleep_for(restTime);
  EXPECT_TRUE(stage.exists(downloadedPath) || stage.exists(installedPath)) << "both copies are gone";
  if (stage.exists(downloadedPath)) {
    const auto due = stage.exists(installedPath) ? "opened" : "moved";
    const auto ended = stage.move();
    EXPECT_EQ(ended.status, 0);
    EXPECT_LT(ended.after, unhindered);
    EXPECT_EQ(stage.result(), resultOf(due));
  }
  EXPECT_EQ(stage.tree(installedPath), source);
  EXPECT_EQ(stage.build(installedPath), "5000");
}

INSTANTIATE_TEST_SUITE_P(Moments, MoveDeathScenario,
                         testing::Values(Moment{200}, Moment{405}, Moment{420}, Moment{500}, Moment{600},
                                         Moment{690, true}, Moment{720, true}));

}  // namespace
}  // namespace tamo::scenario

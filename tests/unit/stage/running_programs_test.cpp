#include "platform/stage/running_programs.hpp"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

#include "platform/posix/posix_processes.hpp"
#include "platform/stage/background_program.hpp"
#include "temporary_stage.hpp"

namespace tamo::stage {
namespace {

namespace fs = std::filesystem;

constexpr auto program = "/Applications/Idle.app/Contents/MacOS/Idle";

class RunningProgramsTest : public ::testing::Test {
 protected:
  RunningProgramsTest() { fs::create_directories(fs::path(stage.root.host(program)).parent_path()); }
  ~RunningProgramsTest() override {
    for (const auto& one : runningPrograms(stage.root))
      ::kill(one.pid, SIGKILL);
  }

  void layIdleProgram() const { fs::copy_file(TAMO_BINARY_DIR "/bin/stage-app", stage.root.host(program)); }
  [[nodiscard]] bool start() const {
    return startInBackground({.program = stage.root.host(program),
                              .environment = {"TAMO_STAGE=" + stage.path},
                              .log = stage.root.control("app.log")});
  }

  TemporaryStage stage;
};

/// Once for each moment of an exec in which a process could be overlooked.
TEST_F(RunningProgramsTest, AProgramIsListedAsSoonAsItsStartIsTold) {
  layIdleProgram();
  for (std::size_t started = 1; started <= 100; ++started) {
    ASSERT_TRUE(start());
    ASSERT_EQ(runningPrograms(stage.root).size(), started);
  }
}

TEST_F(RunningProgramsTest, AFileThatNoSystemCanRunIsNotStarted) {
  stage.write(program, "\x01 no program");
  fs::permissions(stage.root.host(program), fs::perms::owner_all);
  EXPECT_FALSE(start());
}

/// It runs the bundle's own executable, but says itself that it was started as something else.
TEST_F(RunningProgramsTest, AProgramThatWasNotStartedFromInsideABundleIsNotListed) {
  layIdleProgram();
  ::setenv("TAMO_STAGE", stage.path.c_str(), 1);
  platform::PosixProcesses processes;
  for (const auto& startedAs : {std::string("/usr/bin/idle"), stage.root.host("/Applications/Idle.app/Idle"),
                                stage.root.host("/usr/bin/idle")}) {
    const auto idle = processes.start({.path = startedAs, .arguments = {}}, stage.root.host(program));
    ASSERT_NE(idle, nullptr);
    EXPECT_TRUE(idle->running());
    EXPECT_TRUE(runningPrograms(stage.root).empty()) << startedAs;
    idle->terminate();
    static_cast<void>(idle->wait());
  }
}

}  // namespace
}  // namespace tamo::stage

#include "platform/stage/stage_processes.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "temporary_stage.hpp"

namespace tamo::stage {
namespace {

TEST(StageProcessesTest, AToolThatOnlyTheHostHasIsNotThere) {
  const TemporaryStage stage;
  StageProcesses processes(stage.root);
  ASSERT_EQ(::access("/bin/sh", X_OK), 0);
  EXPECT_EQ(processes.start({.path = "/bin/sh", .arguments = {"-c", "exit 0"}}), nullptr);
}

TEST(StageProcessesTest, TheStagesOwnToolIsStarted) {
  const TemporaryStage stage;
  stage.write("/bin/sh", "#!/bin/sh\nexit 7\n");
  ASSERT_EQ(::chmod((stage.path + "/bin/sh").c_str(), 0700), 0);
  StageProcesses processes(stage.root);
  const auto tool = processes.start({.path = "/bin/sh", .arguments = {}});
  ASSERT_NE(tool, nullptr);
  EXPECT_EQ(tool->wait(), 7);
}

}  // namespace
}  // namespace tamo::stage

#include "platform/stage/stage_processes.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "noting_test.hpp"
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

class NotedToolTest : public NotingTest {
 protected:
  std::unique_ptr<platform::Tool> started(const std::string& script) {
    stage.write("/bin/tool", "#!/bin/sh\n" + script + "\n");
    EXPECT_EQ(::chmod((stage.path + "/bin/tool").c_str(), 0700), 0);
    return processes.start({.path = "/bin/tool", .arguments = {"a", "b c"}});
  }

  StageProcesses processes{stage.root};
};

TEST_F(NotedToolTest, AToolIsNotedAtItsStartAndWhenItsEndIsFirstSeen) {
  const auto tool = started("exit 7");
  EXPECT_EQ(tool->wait(), 7);
  EXPECT_EQ(tool->wait(), 7);
  EXPECT_FALSE(tool->running());
  tool->terminate();
  const auto lines = noted();
  ASSERT_EQ(lines.size(), 2U);
  const auto pid = lines[0].substr(7, lines[0].find(' ', 7) - 7);
  EXPECT_EQ(lines[0], "starts " + pid + " /bin/tool a b c");
  EXPECT_EQ(lines[1], "tool-ended " + pid + " 7");
}

TEST_F(NotedToolTest, ASignalToAToolThatRunsIsNoted) {
  const auto tool = started("exec sleep 60");
  EXPECT_TRUE(tool->running());
  tool->terminate();
  EXPECT_EQ(tool->wait(), 15);
  const auto lines = noted();
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_TRUE(lines[1].starts_with("signals 15 process ")) << lines[1];
  EXPECT_TRUE(lines[2].starts_with("tool-ended ") && lines[2].ends_with(" 15")) << lines[2];
}

TEST_F(NotedToolTest, AToolThatIsNotThereIsNotedWithoutAPid) {
  EXPECT_EQ(processes.start({.path = "/bin/none", .arguments = {}}), nullptr);
  EXPECT_EQ(noted(), std::vector<std::string>{"starts 0 /bin/none"});
}

}  // namespace
}  // namespace tamo::stage

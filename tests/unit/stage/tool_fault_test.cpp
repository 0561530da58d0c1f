#include "stage/common/tool_fault.hpp"

#include <array>
#include <future>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include "temporary_stage.hpp"

namespace tamo::stage {
namespace {

TEST(ToolFaultTest, EachKindIsRead) {
  EXPECT_TRUE(std::holds_alternative<Hang>(*toolFault("hang")));
  EXPECT_FALSE(std::get<Hang>(*toolFault("hang")).hard);
  EXPECT_TRUE(std::get<Hang>(*toolFault("hang hard")).hard);
  EXPECT_EQ(std::get<Hold>(*toolFault("hold 1500")).milliseconds, 1500);
  EXPECT_EQ(std::get<Fail>(*toolFault("fail 113")).status, 113);
  EXPECT_EQ(std::get<Slow>(*toolFault("slow 250")).milliseconds, 250);
  EXPECT_TRUE(std::holds_alternative<Pause>(*toolFault("pause")));
  EXPECT_EQ(std::get<Flood>(*toolFault("flood 100000")).bytes, 100000);
  EXPECT_EQ(std::get<Die>(*toolFault("die 9")).signal, 9);
  EXPECT_EQ(std::get<Cut>(*toolFault("cut 4096")).bytes, 4096);
}

TEST(ToolFaultTest, ALieHasAFileAndPerhapsAStatus) {
  const auto plain = std::get<Lie>(*toolFault("lie /tmp/a print.txt"));
  EXPECT_EQ(plain.file, "/tmp/a print.txt");
  EXPECT_EQ(plain.status, 0);
  const auto failing = std::get<Lie>(*toolFault("lie /tmp/a print.txt 5"));
  EXPECT_EQ(failing.file, "/tmp/a print.txt");
  EXPECT_EQ(failing.status, 5);
}

TEST(ToolFaultTest, WhatIsNoFaultIsNone) {
  for (const auto* text : {"", "hang on", "hold", "hold on", "fail", "fail x", "slow -1", "lie", "die TERM",
                           "cut", "pause 5", "sulk 3"})
    EXPECT_FALSE(toolFault(text)) << text;
}

TEST(ToolFaultTest, ALineForTheVerbComesBeforeALineForAny) {
  const auto* lines = "* fail 1\nprint slow 5\n";
  EXPECT_TRUE(std::holds_alternative<Slow>(*toolFaultFor(lines, "print")));
  EXPECT_TRUE(std::holds_alternative<Fail>(*toolFaultFor(lines, "kickstart")));
  EXPECT_FALSE(toolFaultFor("print hang", "kickstart"));
  EXPECT_FALSE(toolFaultFor("", "print"));
}

TEST(ToolFaultTest, AVerbsLineIsReplacedAndTakenOut) {
  EXPECT_EQ(withToolFault("", "*", "hang"), "* hang");
  EXPECT_EQ(withToolFault("* hang\nprint fail 1", "print", "slow 5"), "* hang\nprint slow 5");
  EXPECT_EQ(withToolFault("* hang\nprint fail 1", "print", std::nullopt), "* hang");
  EXPECT_EQ(withToolFault("print hang", "print", std::nullopt), "");
}

TEST(ToolFaultTest, WithoutAFaultTheToolWorks) {
  const TemporaryStage stage;
  EXPECT_EQ(sufferFault(stage.root, "launchctl", "print"), std::nullopt);
  stage.root.set("tool-ditto", "* fail 7");
  EXPECT_EQ(sufferFault(stage.root, "launchctl", "print"), std::nullopt);
}

TEST(ToolFaultTest, AFailureExitsWithoutWork) {
  const TemporaryStage stage;
  stage.root.set("tool-launchctl", "print fail 7");
  EXPECT_EQ(sufferFault(stage.root, "launchctl", "print"), 7);
}

TEST(ToolFaultTest, ALiePrintsAFileOfTheStage) {
  const TemporaryStage stage;
  stage.write("/lie.txt", "pid = 1\n");
  stage.root.set("tool-launchctl", "* lie /lie.txt 3");
  ::testing::internal::CaptureStdout();
  EXPECT_EQ(sufferFault(stage.root, "launchctl", "print"), 3);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "pid = 1\n");
}

TEST(ToolFaultTest, AFloodIsAsLongAsOrderedOnBothOutputs) {
  const TemporaryStage stage;
  stage.root.set("tool-launchctl", "* flood 70001");
  ::testing::internal::CaptureStdout();
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(sufferFault(stage.root, "launchctl", "print"), std::nullopt);
  EXPECT_EQ(::testing::internal::GetCapturedStdout().size(), 70001U);
  EXPECT_EQ(::testing::internal::GetCapturedStderr().size(), 70001U);
}

TEST(ToolFaultTest, AHoldKeepsTheOutputOpenAfterTheToolWentOn) {
  const TemporaryStage stage;
  stage.root.set("tool-launchctl", "* hold 50");
  std::array<int, 2> ends{};
  ASSERT_EQ(::pipe(ends.data()), 0);
  const int kept = ::dup(STDOUT_FILENO);
  ::dup2(ends[1], STDOUT_FILENO);
  EXPECT_EQ(sufferFault(stage.root, "launchctl", "print"), std::nullopt);
  ::dup2(kept, STDOUT_FILENO);
  ::close(kept);
  ::close(ends[1]);
  char byte = 0;
  pollfd polled{.fd = ends[0], .events = POLLIN, .revents = 0};
  EXPECT_EQ(::poll(&polled, 1, 0), 0) << "nobody holds the output";
  EXPECT_EQ(::read(ends[0], &byte, 1), 0) << "the child went away";
  ::close(ends[0]);
  ::wait(nullptr);
}

TEST(ToolFaultTest, APauseLastsUntilItIsNotOrderedAnyLonger) {
  const TemporaryStage stage;
  stage.root.set("tool-launchctl", "* pause");
  auto pausing =
      std::async(std::launch::async, [&] { return sufferFault(stage.root, "launchctl", "print"); });
  EXPECT_EQ(pausing.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
  stage.root.set("tool-launchctl", "kickstart pause");
  EXPECT_EQ(pausing.get(), std::nullopt);
}

TEST(ToolFaultTest, APauseOnAStageThatIsGoneEndsWithoutWork) {
  const TemporaryStage around;
  std::filesystem::create_directory(around.path + "/stage");
  const StageRoot root(around.path + "/stage");
  root.set("tool-launchctl", "* pause");
  auto pausing = std::async(std::launch::async, [&] { return sufferFault(root, "launchctl", "print"); });
  EXPECT_EQ(pausing.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
  std::filesystem::rename(around.path + "/stage", around.path + "/elsewhere");
  EXPECT_EQ(pausing.get(), 1);
}

TEST(ToolFaultTest, ADyingToolEndsByItsSignal) {
  const TemporaryStage stage;
  stage.root.set("tool-launchctl", "* die 15");
  EXPECT_EXIT(static_cast<void>(sufferFault(stage.root, "launchctl", "print")),
              ::testing::KilledBySignal(SIGTERM), "");
}

}  // namespace
}  // namespace tamo::stage

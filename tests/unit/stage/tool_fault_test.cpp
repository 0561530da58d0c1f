#include "platform/stage/programs/tool_fault.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include "temporary_stage.hpp"

namespace tamo::stage {
namespace {

TEST(ToolFaultTest, EachKindIsRead) {
  EXPECT_TRUE(std::holds_alternative<Hang>(*toolFault("hang")));
  EXPECT_EQ(std::get<Fail>(*toolFault("fail 113")).status, 113);
  EXPECT_EQ(std::get<Slow>(*toolFault("slow 250")).milliseconds, 250);
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
  for (const auto* text : {"", "hang on", "fail", "fail x", "slow -1", "lie", "die TERM", "cut", "sulk 3"})
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

TEST(ToolFaultTest, ADyingToolEndsByItsSignal) {
  const TemporaryStage stage;
  stage.root.set("tool-launchctl", "* die 15");
  EXPECT_EXIT(static_cast<void>(sufferFault(stage.root, "launchctl", "print")),
              ::testing::KilledBySignal(SIGTERM), "");
}

}  // namespace
}  // namespace tamo::stage

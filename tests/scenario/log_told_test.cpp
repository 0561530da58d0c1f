#include <array>
#include <cstdio>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/wait.h>

#include "scenario/move_stage.hpp"

/// The log of a stage, told by tamo-log as it is built.
namespace tamo::scenario {
namespace {

using ::testing::HasSubstr;

struct Told {
  std::string text{};
  int status = -1;
};

/// The text as one line, for sentences that are searched in it.
std::string flat(const std::string& text) {
  std::istringstream in(text);
  std::string line;
  for (std::string word; in >> word;)
    line += word + " ";
  return line;
}

/// What tamo-log says to these words, its complaints included.
Told told(const std::string& words) {
  Told result;
  auto* pipe = ::popen((TAMO_BINARY_DIR "/bin/tamo-log " + words + " 2>&1 </dev/null").c_str(), "r");
  if (pipe == nullptr) return result;
  std::array<char, 4096> buffer{};
  while (const auto size = std::fread(buffer.data(), 1, buffer.size(), pipe))
    result.text.append(buffer.data(), size);
  const int ended = ::pclose(pipe);
  result.status = WEXITSTATUS(ended);
  return result;
}

std::string logOf(const Stage& stage) {
  return stage.root().control("log");
}

TEST(LogToldScenario, ARestartThatKilledTheCoreIsExplained) {
  const Stage stage({.core = "term=ignore"});
  const auto core = std::to_string(stage.corePid());
  const auto companion = std::to_string(stage.act("restart").pid);
  const auto log = told("--width=100 " + logOf(stage));
  EXPECT_EQ(log.status, 0);
  const auto text = flat(log.text);
  EXPECT_THAT(text, HasSubstr(" UTC restart: done (process " + companion + ", "));
  EXPECT_THAT(text, HasSubstr("not changed; the arguments and the exit timeout (20 s) are the same"));
  EXPECT_THAT(text, HasSubstr("Killed the Core, process " + core + ","));
  EXPECT_THAT(text,
              HasSubstr("\"`hardstop pid N: killedGroup(…)` or `killedProcess(…)`\": | The Core was alive"));
  EXPECT_THAT(log.text, ::testing::EndsWith("\n1 action in 3 lines.\n"));
}

TEST(LogToldScenario, EveryActionOfAStageIsTold) {
  const Stage stage({.registered = false});
  for (const auto* action : {"register", "status", "sync", "reseat", "unregister", "bogus\nname"})
    stage.act(action);
  const auto log = told("--width=100 " + logOf(stage));
  for (const auto* verdict : {" register: done (", " status: answered (", " sync: done (", " reseat: done (",
                              " unregister: done (", " bogus\\x0Aname: failed ("})
    EXPECT_THAT(log.text, HasSubstr(verdict));
  EXPECT_THAT(log.text, ::testing::Not(HasSubstr("not known here")));
  EXPECT_THAT(flat(log.text), HasSubstr("description is private"));
}

TEST(LogToldScenario, AMoveAndARefusalAreTold) {
  const MoveStage stage;
  Stage::finish(stage.stage().start({"--core-action", "restart"}, "downloaded"));
  Stage::finish(stage.stage().start({"--core-action", "move-to-applications"}, "downloaded"));
  const auto log = told("--width=100 " + logOf(stage.stage()));
  EXPECT_THAT(log.text, HasSubstr(" restart: refused ("));
  EXPECT_THAT(log.text, HasSubstr(" move-to-applications: done ("));
}

TEST(LogToldScenario, WhatCannotBeToldIsOneLineAndAStatus) {
  const auto empty = told("");
  EXPECT_EQ(empty.text, "standard input: the log is empty\n");
  EXPECT_EQ(empty.status, 1);
  const auto missing = told("/no/such/log");
  EXPECT_EQ(missing.text, "tamo-log: /no/such/log: No such file or directory\n");
  EXPECT_EQ(missing.status, 2);
  EXPECT_THAT(told("/tmp").text, HasSubstr("tamo-log: /tmp: Is a directory (a .logarchive"));
  EXPECT_EQ(told("/tmp").status, 2);
  EXPECT_EQ(told("--nothing").status, 2);
  EXPECT_EQ(told("--help").status, 0);
}

TEST(LogToldScenario, AnOutputThatIsFullIsNoticed) {
  EXPECT_EQ(told("--help >/dev/full").status, 2);
}

}  // namespace
}  // namespace tamo::scenario

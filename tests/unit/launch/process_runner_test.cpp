#include "launch/process_runner.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "unit/launch/launch_rig.hpp"

namespace tamo {
namespace {

using ::testing::ElementsAre;

class ProcessRunnerTest : public ::testing::Test {
 protected:
  std::int32_t run(fakes::ToolScript script) {
    fake.processes.once({"/usr/bin/tool", "-x", "a b"}, std::move(script));
    return runner.run("/usr/bin/tool", {"-x", "a b"}, errors);
  }

  fakes::FakePlatform fake;
  ProcessRunner runner{fake.processes};
  std::string errors = "before";
};

TEST_F(ProcessRunnerTest, TheExitStatusIsGiven) {
  EXPECT_EQ(run({.status = 3}), 3);
  EXPECT_EQ(run({.status = 0}), 0);
}

TEST_F(ProcessRunnerTest, AnyExitStatusIsGivenAsItIs) {
  for (const std::int32_t status : {1, 2, 9, 15, 77, 126, 127, 128, 143, 255, 256, -1, -128, 2147483647})
    EXPECT_EQ(run({.status = status}), status);
}

TEST_F(ProcessRunnerTest, AToolThatFailedIsNotTriedAgain) {
  fake.processes.always({"/usr/bin/tool"}, {.status = 1});
  EXPECT_EQ(runner.run("/usr/bin/tool", {}, errors), 1);
  EXPECT_EQ(fake.ledger.count("tool: /usr/bin/tool"), 1U);
}

TEST_F(ProcessRunnerTest, AToolThatDidNotStartIsNotTriedAgain) {
  fake.processes.always({"/usr/bin/tool"}, {.starts = false});
  EXPECT_EQ(runner.run("/usr/bin/tool", {}, errors), -1);
  EXPECT_EQ(fake.ledger.count("tool: /usr/bin/tool"), 1U);
}

TEST_F(ProcessRunnerTest, ErrorsAreKeptToTheByte) {
  for (const auto& written :
       {std::string("a\0b", 3), std::string("\n \r\n\t x \n"), std::string("\uFEFFx")}) {
    run({.errors = written});
    EXPECT_EQ(errors, written);
  }
}

TEST_F(ProcessRunnerTest, EachRunReplacesTheErrorsOfTheOneBefore) {
  run({.status = 1, .errors = "the first was long"});
  EXPECT_EQ(errors, "the first was long");
  run({.errors = "short"});
  EXPECT_EQ(errors, "short");
  run({.errors = ""});
  EXPECT_EQ(errors, "");
}

TEST_F(ProcessRunnerTest, ASuccessHasItsErrorsKeptToo) {
  run({.status = 0, .errors = "a warning\n"});
  EXPECT_EQ(errors, "a warning\n");
}

TEST_F(ProcessRunnerTest, TheLimitIsOneOfBytes) {
  run({.errors = std::string(4096, 'a')});
  EXPECT_EQ(errors.size(), 4096U);
  run({.errors = std::string(4097, 'a')});
  EXPECT_EQ(errors.size(), 4096U);
}

TEST_F(ProcessRunnerTest, ErrorsOfATenThousandByteToolAreItsFirst4096Bytes) {
  std::string written;
  for (int line = 0; written.size() < 10'000; ++line)
    written += std::to_string(line) + "\n";
  written.resize(10'000);
  run({.errors = written});
  EXPECT_EQ(errors, written.substr(0, 4096));
}

TEST_F(ProcessRunnerTest, ACharacterCutAtTheLimitBecomesOneReplacement) {
  run({.errors = std::string(4094, 'a') + "\u20AC and more"});
  EXPECT_EQ(errors, std::string(4094, 'a') + "\uFFFD");
}

TEST_F(ProcessRunnerTest, ACharacterThatEndsAtTheLimitIsKept) {
  run({.errors = std::string(4093, 'a') + "\u20AC and more"});
  EXPECT_EQ(errors, std::string(4093, 'a') + "\u20AC");
}

TEST_F(ProcessRunnerTest, InvalidBytesAreReplaced) {
  run({.errors = "not \xFF text"});
  EXPECT_EQ(errors, "not \uFFFD text");
}

TEST_F(ProcessRunnerTest, NoErrorsGiveAnEmptyText) {
  run({.errors = ""});
  EXPECT_EQ(errors, "");
}

TEST_F(ProcessRunnerTest, AToolThatFailedHasItsErrorsKept) {
  EXPECT_EQ(run({.status = 1, .errors = "execution error: cancelled (-128)\n"}), 1);
  EXPECT_EQ(errors, "execution error: cancelled (-128)\n");
}

TEST_F(ProcessRunnerTest, AToolThatDoesNotStartGivesMinusOneAndLeavesTheErrors) {
  EXPECT_EQ(run({.starts = false, .status = 4, .errors = "never written"}), -1);
  EXPECT_EQ(errors, "before");
  EXPECT_THAT(fake.ledger.texts(), ElementsAre("tool: /usr/bin/tool -x a b"));
}

TEST_F(ProcessRunnerTest, ErrorsAreReadToTheirEndBeforeTheWait) {
  run({});
  EXPECT_THAT(fake.ledger.texts(),
              ElementsAre("tool: /usr/bin/tool -x a b", "tool: read errors /usr/bin/tool",
                          "tool: wait /usr/bin/tool"));
}

TEST_F(ProcessRunnerTest, AToolMayRunForHours) {
  EXPECT_EQ(run({.status = 6, .runsFor = std::chrono::hours(5)}), 6);
  EXPECT_EQ(fake.clock.monotonicNow(), std::chrono::hours(5));
  EXPECT_EQ(fake.ledger.count("tool: terminate"), 0U);
}

TEST_F(ProcessRunnerTest, OutputIsDiscardedAndErrorsAreCaptured) {
  KeepsLaunches processes(fake.processes);
  fake.processes.once({"/usr/bin/tool", "one"}, {});
  EXPECT_EQ(ProcessRunner(processes).run("/usr/bin/tool", {"one"}, errors), 0);
  ASSERT_EQ(processes.launches.size(), 1U);
  EXPECT_EQ(processes.launches[0].path, "/usr/bin/tool");
  EXPECT_THAT(processes.launches[0].arguments, ElementsAre("one"));
  EXPECT_EQ(processes.launches[0].standardOutput, -1);
  EXPECT_TRUE(processes.launches[0].capturesErrors);
}

}  // namespace
}  // namespace tamo

#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "launch/print_reading.hpp"

/// Statuses and lines beyond those that are seen every day.
namespace tamo {
namespace {

TEST(PrintStatusTest, NoOtherNumberStandsForNotFound) {
  constexpr auto highest = std::numeric_limits<std::int32_t>::max();
  constexpr auto lowest = std::numeric_limits<std::int32_t>::min();
  for (const std::int32_t code : {2, 3, 64, 126, 127, 128, 255, 256, 369, 28928, -2, highest, lowest})
    EXPECT_TRUE(jobRunning(PrintResult{.code = code, .text = ""})) << code;
}

TEST(PrintStatusTest, AGoodPrintOfNoWordsIsReadable) {
  EXPECT_FALSE(jobRunning(PrintResult{.code = 0, .text = ""}));
}

TEST(PrintStatusTest, AFailureWithAPidLineIsADoubtAndNotFoundIsNone) {
  for (const std::int32_t code : {1, -1, 127})
    EXPECT_TRUE(jobRunning(PrintResult{.code = code, .text = "pid = 812\n"})) << code;
}

TEST(PidLineTest, OnlySpacesAndTabsMayStandBeforeIt) {
  for (const std::string before : {"\u200B", "\uFEFF", "\v", "\f", "\"", "-", "\u0085"})
    EXPECT_FALSE(jobRunning(PrintResult{.code = 0, .text = before + "pid = 812\n"})) << before;
  EXPECT_TRUE(jobRunning(PrintResult{.code = 0, .text = "\u2003\u3000\t pid = 812\n"}));
}

TEST(PidLineTest, OnlyALineFeedBeginsALine) {
  for (const std::string between : {"\r", "\v", "\f", "\u2028", "\u0085", "; "})
    EXPECT_FALSE(jobRunning(PrintResult{.code = 0, .text = "state = x" + between + "pid = 812"})) << between;
}

TEST(PidLineTest, ItsWordsAreExact) {
  for (const std::string line :
       {"pid  = 812", "pid =\t812", "pid: 812", "pid = ", "PID = 812", "\"pid = 812"})
    EXPECT_FALSE(jobRunning(PrintResult{.code = 0, .text = line + "\n"})) << line;
  EXPECT_TRUE(jobRunning(PrintResult{.code = 0, .text = "pid = \"812\"\n"}));
}

TEST(PidLineTest, CountsAfterBracesThatDoNotFit) {
  EXPECT_TRUE(jobRunning(PrintResult{.code = 0, .text = "}\n}\n}\npid = 812\n"}));
  EXPECT_TRUE(jobRunning(PrintResult{.code = 0, .text = "arguments = {\npid = 812\n}\n"}));
}

}  // namespace
}  // namespace tamo

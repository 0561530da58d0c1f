#include "support/tamo_log.hpp"

#include <algorithm>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

/// The command as a whole, on texts.
namespace tamo::support {
namespace {

using testing::HasSubstr;
using testing::Not;

struct Told {
  bool found = false;
  std::string text{};
};

Told told(const std::string& log, const Manner& manner = {}) {
  Told result;
  auto source = [&log, at = std::size_t{0}](char* buffer, std::size_t size) mutable {
    const auto given = std::min(size, log.size() - at);
    std::memcpy(buffer, log.data() + at, given);
    at += given;
    return given;
  };
  result.found = tellLog("a.log", source, manner, [&](std::string_view text) { result.text += text; });
  return result;
}

std::string own(const std::string& time, const std::string& message) {
  return "{\"timestamp\":\"2026-11-21 " + time +
         "000+0100\",\"processID\":812,\"subsystem\":\"studio.pell.Tamo.Core\","
         "\"messageType\":\"Default\",\"eventType\":\"logEvent\",\"eventMessage\":\"" +
         message + "\"}\n";
}

TEST(TamoLogTest, AnActionIsToldWithItsTimes) {
  const auto result = told(own("10:00:00.100", "hardstop pid 777: exited") +
                           own("10:00:01.600", "reseat -> status 1 ok Optional(true)<private>"));
  EXPECT_TRUE(result.found);
  EXPECT_EQ(result.text,
            "2026-11-21 10:00:00.100 +0100 reseat: done (process 812, 1.5 s)\n"
            "  Asked: unregister the agent and register it again.\n"
            "  10:00:00.100  Watched the Core, process 777, while it was asked to stop: it\n"
            "                ended by itself within 2 seconds. No signal was sent.\n"
            "  10:00:01.600  The agent was unregistered and registered again. The agent's\n"
            "                status is 1 (enabled), as it has to be after this action.\n"
            "  What to do: Nothing.\n"
            "\n"
            "1 action in 2 lines.\n");
}

TEST(TamoLogTest, AParagraphOfThePageIsShownOnce) {
  const auto line = own("10:00:00.100", "register -> status 2 ok Optional(false)<private>");
  const auto text = told(line + line).text;
  const auto first = text.find("docs/troubleshooting.md, \"`-> status 2`, with or without an error\":\n");
  ASSERT_NE(first, std::string::npos) << text;
  EXPECT_NE(text.find("error\", shown", first), std::string::npos) << text;
  EXPECT_EQ(text.find("The companion opens System Settings only after", first),
            text.rfind("The companion opens System Settings only after"));
}

TEST(TamoLogTest, NoLineIsWiderThanItShouldBe) {
  const auto log =
      own("10:00:00.100",
          "restart refused: tamo.test_copy_refused_live_data app=/Users/somebody/Downloads/x/y/Tamo.app "
          "(only /Applications/Tamo.app opens the founder's data and Core)") +
      own("10:00:00.200", "something new") + "stray\n";
  for (const std::size_t width : {40U, 63U, 100U}) {
    const auto text = told(log, {.width = width}).text;
    std::size_t longest = 0;
    for (std::size_t at = 0; at < text.size(); at = text.find('\n', at) + 1) {
      const auto line = text.substr(at, text.find('\n', at) - at);
      longest = std::max(longest, static_cast<std::size_t>(std::ranges::count_if(line, [](char byte) {
                           return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
                         })));
    }
    EXPECT_LE(longest, width);
    EXPECT_GT(longest, width - 8);
  }
}

TEST(TamoLogTest, NothingInALogActsOnTheTerminal) {
  const auto text =
      told(own("10:00:00.100", "a\\u001b[2J -> status 1 ok Optional(true)") + "\x1B]0;x\x07\n").text;
  EXPECT_EQ(text.find('\x1B'), std::string::npos);
  EXPECT_THAT(text, HasSubstr("a\\x1B[2J: "));
}

TEST(TamoLogTest, ALogThatHasNothingIsToldInOneParagraph) {
  EXPECT_EQ(told("").text, "a.log: the log is empty\n");
  EXPECT_FALSE(told("").found);
  EXPECT_THAT(told("hello\nyou\n").text,
              testing::StartsWith("a.log: none of 2 lines is Tamo Core's. This gives"));
  EXPECT_THAT(told("hello").text, HasSubstr("and the last one is cut"));
  EXPECT_THAT(told("{\"subsystem\" : \"studio.pell.Tamo.Core\",\n").text,
              HasSubstr("1 line names Tamo Core"));
  EXPECT_THAT(told(std::string("a\0b\n", 4)).text, HasSubstr("this is no text"));
}

TEST(TamoLogTest, WhatIsLeftOutIsCounted) {
  const auto foreign = std::string("2026-11-21 10:00:00.000 Df launchd[1:2] [com.apple.x:y] hello\n");
  const auto naming =
      std::string("2026-11-21 10:00:00.000 Df launchd[1:2] [com.apple.x:y] studio.pell.Tamo.Core\n");
  const auto line = own("10:00:00.100", "status -> status 1 ok Optional(true)<private>");
  EXPECT_THAT(told(line + foreign + naming).text,
              HasSubstr("1 action in 3 lines. 2 lines are other programs'; 1 names the product (--all\n"
                        "shows them).\n"));
  EXPECT_THAT(told(line + naming, {.all = true}).text, HasSubstr("Another program's line"));
}

TEST(TamoLogTest, TheCommandsWordsAreUnderstood) {
  EXPECT_EQ(wishOf({})->logs, std::vector<std::string>{"-"});
  EXPECT_EQ(wishOf({"a", "-", "b"})->logs, (std::vector<std::string>{"a", "-", "b"}));
  EXPECT_TRUE(wishOf({"--help"})->help);
  EXPECT_TRUE(wishOf({"-h"})->help);
  EXPECT_TRUE(wishOf({"--all", "x"})->all);
  EXPECT_EQ(wishOf({"--width=60"})->width, 60U);
  for (const auto* word : {"--nothing", "-x", "--width=", "--width=x", "--width=-4", "--width=0"})
    EXPECT_FALSE(wishOf({word})) << word;
}

TEST(TamoLogTest, TheWidthIsTheTerminalsWithinBounds) {
  EXPECT_EQ(widthFor({}, std::nullopt), 80U);
  EXPECT_EQ(widthFor({}, 20), 40U);
  EXPECT_EQ(widthFor({}, 72), 72U);
  EXPECT_EQ(widthFor({}, 300), 100U);
  EXPECT_EQ(widthFor({.width = 50}, 72), 50U);
}

TEST(TamoLogTest, HelpFitsATerminalAndNamesWhatTheCommandTakes) {
  for (const auto* word : {"--all", "--width=N", "ndjson", "compact", "stage"})
    EXPECT_THAT(std::string(usage()), HasSubstr(word));
}

}  // namespace
}  // namespace tamo::support

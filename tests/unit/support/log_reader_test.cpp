#include "support/log_reader.hpp"

#include <algorithm>
#include <gtest/gtest.h>

/// Logs line by line: what is handed on, and what is left out.
namespace tamo::support {
namespace {

using Texts = std::vector<std::string>;

std::string lineAt(const std::string& time, const std::string& message, int pid = 8) {
  return "2026-11-21 " + time + " Df Tamo Core[" + std::to_string(pid) +
         ":4f] [studio.pell.Tamo.Core:lifecycle] " + message;
}

const std::string done = "status -> status 1 ok Optional(true)";
const std::string foreignLine = "2026-11-21 10:00:00.000 Df launchd[1:2] [com.apple.x:y] hello";

/// What came out: "PID:LINES" of an action, and a remark with its lines.
struct Read {
  Texts items;
  Counts counts;
};

std::string shown(const Item& item) {
  if (const auto* action = std::get_if<Action>(&item))
    return std::to_string(action->pid) + ":" + std::to_string(action->lines.size());
  const auto& aside = std::get<Aside>(item);
  auto text = aside.remark;
  for (const auto& line : aside.lines)
    text += "|" + line;
  return text;
}

Read readLines(const Texts& lines, bool all = false, bool lastEnded = true) {
  Read result;
  LogReader reader(all, [&](const Item& item) { result.items.push_back(shown(item)); });
  for (std::size_t at = 0; at < lines.size(); ++at)
    reader.take({.text = lines[at],
                 .marked = lines[at].contains(subsystem),
                 .ended = lastEnded || at + 1 < lines.size()});
  reader.finish();
  result.counts = reader.counts();
  return result;
}

TEST(LogReaderTest, ActionsAreHandedOnAndOthersLeftOut) {
  const auto result = readLines({"Timestamp               Ty Process[PID:TID]", foreignLine,
                                 lineAt("10:00:00.000", done), foreignLine, "its second line"});
  EXPECT_EQ(result.items, Texts{"8:1"});
  EXPECT_EQ(result.counts.own, 1U);
  EXPECT_EQ(result.counts.foreign, 2U);
  EXPECT_EQ(result.counts.lines, 5U);
}

TEST(LogReaderTest, AnUnknownLineOfTheCompanionIsShownAsItIs) {
  const auto line = lineAt("10:00:00.000", "something new");
  EXPECT_EQ(readLines({line, lineAt("10:00:01.000", done)}).items,
            (Texts{"A line of the companion's that is not known here:|" + line, "8:1"}));
}

TEST(LogReaderTest, ALineInNoFormIsShownAsItIs) {
  const auto line = lineAt("10:00:00.000", done);
  EXPECT_EQ(readLines({line, "hello"}).items, (Texts{"8:1", "A line that is not known here:|hello"}));
  EXPECT_EQ(readLines({"hello", "you", line}).items,
            (Texts{"Lines that are not known here:|hello|you", "8:1"}));
  EXPECT_EQ(readLines({line, "", "  "}).items, Texts{"8:1"});
}

TEST(LogReaderTest, VeryManyUnknownLinesAreCounted) {
  Texts lines{lineAt("10:00:00.000", done)};
  lines.resize(26, "x");
  const auto items = readLines(lines).items;
  ASSERT_EQ(items.size(), 2U);
  EXPECT_EQ(std::ranges::count(items[1], '|'), 21);
  EXPECT_TRUE(items[1].ends_with("|… and 5 more lines like these")) << items[1];
}

TEST(LogReaderTest, ALogWithNothingOfTheCompanionsHandsOnNothing) {
  const auto result = readLines({"hello", "you"});
  EXPECT_EQ(result.items, Texts{});
  EXPECT_EQ(result.counts.own, 0U);
}

TEST(LogReaderTest, AMessageMayGoOnInTheNextLines) {
  EXPECT_EQ(
      readLines({lineAt("10:00:00.000", "two"), "lines -> status 1 ok Optional(true)", foreignLine}).items,
      Texts{"8:1"});
  const auto begun = lineAt("10:00:00.000", "two");
  EXPECT_EQ(readLines({begun, "three", lineAt("10:00:01.000", done)}).items,
            (Texts{"A line of the companion's that is not known here:|" + begun + "|three", "8:1"}));
}

TEST(LogReaderTest, AMessageThatSaysSomethingDoesNotGoOn) {
  EXPECT_EQ(readLines({lineAt("10:00:00.000", done), "hello", lineAt("10:00:01.000", done, 9)}).items,
            (Texts{"8:1", "A line that is not known here:|hello", "9:1"}));
}

TEST(LogReaderTest, ALogThatIsCutInALineIsToldSo) {
  const auto line = lineAt("10:00:00.000", done);
  const auto cut = lineAt("10:00:01.000", "restart -> status 1 ok Opt");
  EXPECT_EQ(readLines({line, cut}, false, false).items,
            (Texts{"8:1", "The log ends in the middle of this line of the companion's:|" + cut}));
  EXPECT_EQ(readLines({line, "2026-11-"}, false, false).items,
            (Texts{"8:1", "The log ends in the middle of this line:|2026-11-"}));
  EXPECT_EQ(readLines({line, line}, false, false).items, (Texts{"8:1", "8:1"}))
      << "only the line break is missing";
  EXPECT_TRUE(readLines({"2026-11-"}, false, false).counts.cut);
}

TEST(LogReaderTest, AClockThatGoesBackIsTold) {
  EXPECT_EQ(readLines({lineAt("10:00:05.000", done), lineAt("10:00:02.000", done, 9)}).items,
            (Texts{"8:1", "Here the log's clock goes back by 3.0 s.", "9:1"}));
  EXPECT_EQ(readLines({lineAt("10:00:05.000", done), lineAt("10:00:04.000", done, 9)}).items,
            (Texts{"8:1", "9:1"}))
      << "a moment";
}

TEST(LogReaderTest, OthersThatNameTheProductAreShownWhenAskedFor) {
  const auto line = foreignLine + " studio.pell.Tamo.Core";
  EXPECT_EQ(readLines({line, lineAt("10:00:00.000", done)}).items, Texts{"8:1"});
  EXPECT_EQ(readLines({line}).counts.naming, 1U);
  EXPECT_EQ(readLines({line, lineAt("10:00:00.000", done)}, true).items,
            (Texts{"Another program's line that names the product:|" + line, "8:1"}));
}

TEST(LogReaderTest, ALongUnknownLineIsShownByItsFront) {
  const auto items = readLines({lineAt("10:00:00.000", done), std::string(5000, 'x')}).items;
  EXPECT_EQ(items.at(1), "A line that is not known here:|" + std::string(4096, 'x') + " …");
}

TEST(LogReaderTest, AZeroByteIsNoticed) {
  EXPECT_TRUE(readLines({std::string("a\0b", 3)}).counts.binary);
  EXPECT_FALSE(readLines({"ab"}).counts.binary);
}

}  // namespace
}  // namespace tamo::support

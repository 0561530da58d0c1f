#include "stage/picture/picture_text.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

#include "journal_builder.hpp"
#include "stage/picture/picture_of.hpp"
#include "stage/picture/picture_words.hpp"

namespace tamo::stage {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);)
    lines.push_back(line);
  return lines;
}

std::string lineOf(const std::string& text, const std::string& name) {
  for (const auto& line : linesOf(text))
    if (line.starts_with(name)) return line;
  ADD_FAILURE() << "no line " << name << " in\n" << text;
  return "";
}

TEST(PictureTextTest, NoLineIsLongerThanTheTerminalHasColumns) {
  for (std::size_t columns = narrowestText; columns <= 130; ++columns)
    for (const auto& line : linesOf(textOf(hanging(), columns)))
      EXPECT_LE(columnsOf(line), columns) << line;
}

TEST(PictureTextTest, TheUsualWidthIsUsed) {
  std::size_t longest = 0;
  for (const auto& line : linesOf(textOf(hanging(), usualText)))
    longest = std::max(longest, columnsOf(line));
  EXPECT_GT(longest, 95U);
}

TEST(PictureTextTest, EveryRowAndTheSumAreThere) {
  const auto text = textOf(hanging(), usualText);
  EXPECT_THAT(text, StartsWith("restart by companion 100, 2.52 s\n"));
  for (const auto* name : {"companion 100", " its job lock", " its watch", " its log", "launchctl", "Core 50",
                           " helper 51", "new Core 60", "launchd 1"})
    EXPECT_NE(lineOf(text, name), "");
  EXPECT_THAT(
      text,
      HasSubstr("\nasked at 0.46 s, alive at 2.46 s, group killed at 2.46 s, gone at 2.47 s, new Core at "
                "2.48 s\n"));
  EXPECT_THAT(text, HasSubstr("\n0.469 s  launchd 1 sends SIGTERM to Core 50\n"));
}

TEST(PictureTextTest, RowsShowWhatHappensToWhomInItsOrder) {
  const auto text = textOf(hanging(), usualText);
  const auto core = lineOf(text, "Core 50");
  EXPECT_LT(core.find('T'), core.find('K'));
  EXPECT_LT(core.find('K'), core.find('x'));
  EXPECT_THAT(lineOf(text, " its watch"), HasSubstr("↓"));
  EXPECT_THAT(lineOf(text, "launchd 1"), HasSubstr("↑"));
  EXPECT_THAT(lineOf(text, " helper 51"), HasSubstr("K"));
  EXPECT_THAT(lineOf(text, "new Core 60"), HasSubstr("→"));
  EXPECT_THAT(lineOf(text, "companion 100"), HasSubstr("░░"));
}

TEST(PictureTextTest, AKillStandsInOneColumnForAllWhomItHits) {
  const auto text = textOf(hanging(), usualText);
  const auto column = [&](const std::string& name, const std::string& sign) {
    const auto line = lineOf(text, name);
    return columnsOf(std::string_view(line).substr(0, line.find(sign, 20)));
  };
  EXPECT_EQ(column("Core 50", "K"), column(" helper 51", "K"));
  EXPECT_EQ(column("Core 50", "K"), column(" its watch", "↓"));
}

TEST(PictureTextTest, FortyColumnsStillShowTheOrderAndTheSum) {
  const auto text = textOf(hanging(), 40);
  const auto core = lineOf(text, "Core 50");
  EXPECT_LT(core.find('T'), core.find('K'));
  EXPECT_THAT(text, HasSubstr("asked at 0.46 s, alive at 2.46 s, group\nkilled at 2.46 s"));
}

}  // namespace
}  // namespace tamo::stage

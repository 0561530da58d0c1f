#include "support/line_feed.hpp"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>

/// Lines out of bytes, however the bytes come.
namespace tamo::support {
namespace {

/// Gives a text in pieces of one size.
LineFeed::Source inPieces(const std::string& text, std::size_t piece) {
  return [&text, piece, at = std::size_t{0}](char* buffer, std::size_t size) mutable {
    const auto given = std::min({piece, size, text.size() - at});
    std::memcpy(buffer, text.data() + at, given);
    at += given;
    return given;
  };
}

/// Each line with what is told of it: "text", "text!" for a marked one, "text+" for one that was cut, "text~" for one
/// that no line break ends.
std::vector<std::string> lines(const std::string& text, std::size_t piece = 1 << 20) {
  LineFeed feed(inPieces(text, piece), "MARK");
  std::vector<std::string> all;
  while (const auto line = feed.next())
    all.push_back(std::string(line->text) + (line->marked ? "!" : "") + (line->tooLong ? "+" : "") +
                  (line->ended ? "" : "~"));
  return all;
}

using Texts = std::vector<std::string>;

TEST(LineFeedTest, AnEmptyStreamHasNoLine) {
  EXPECT_EQ(lines(""), Texts{});
}

TEST(LineFeedTest, EveryLineIsGivenWithoutItsBreak) {
  EXPECT_EQ(lines("a\n\nb\r\nc\n"), (Texts{"a", "", "b", "c"}));
}

TEST(LineFeedTest, ALastLineWithoutABreakIsToldAsOne) {
  EXPECT_EQ(lines("a\nb"), (Texts{"a", "b~"}));
}

TEST(LineFeedTest, ALineIsMarkedWhenTheMarkerStandsInIt) {
  EXPECT_EQ(lines("MARK\nMAR\nK\nx MARK y\nMARKMARK\nz"),
            (Texts{"MARK!", "MAR", "K", "x MARK y!", "MARKMARK!", "z~"}));
}

TEST(LineFeedTest, TheSizeOfThePiecesDoesNotMatter) {
  const std::string text = "one MARK\ntwo\n\nMARK three\nfour M\nARK\nlast MARK";
  for (std::size_t piece = 1; piece < text.size(); ++piece)
    EXPECT_EQ(lines(text, piece), lines(text)) << piece;
}

TEST(LineFeedTest, ALineOfTheGreatestLengthIsWhole) {
  const std::string longest(LineFeed::longestLine, 'x');
  EXPECT_EQ(lines(longest + "\nb\n"), (Texts{longest, "b"}));
  EXPECT_EQ(lines(longest), Texts{longest + "~"});
}

TEST(LineFeedTest, ALongerLineIsCutAndTheNextIsWhole) {
  const std::string longest(LineFeed::longestLine, 'x');
  EXPECT_EQ(lines(longest + "y\nb MARK\n"), (Texts{longest + "+", "b MARK!"}));
  EXPECT_EQ(lines(longest + longest + longest + "\nb\n", 4096), (Texts{longest + "+", "b"}));
  EXPECT_EQ(lines(longest + "yy"), Texts{longest + "+"});
}

TEST(LineFeedTest, ABufferThatIsFilledManyTimesLosesNothing) {
  std::string text;
  Texts expected;
  for (int number = 0; number < 100000; ++number) {
    const auto line = std::to_string(number) + (number % 7 == 0 ? " MARK" : "");
    text += line + "\n";
    expected.push_back(line + (number % 7 == 0 ? "!" : ""));
  }
  EXPECT_EQ(lines(text), expected);
}

}  // namespace
}  // namespace tamo::support

#include "support/layout.hpp"

#include <gtest/gtest.h>

/// Text for a terminal.
namespace tamo::support {
namespace {

TEST(LayoutTest, ALineIsFilledAndNoFuller) {
  EXPECT_EQ(paragraph("aaa bbb ccc", {}, 11), "aaa bbb ccc\n");
  EXPECT_EQ(paragraph("aaa bbb ccc", {}, 10), "aaa bbb\nccc\n");
  EXPECT_EQ(paragraph("aaa bbb cccc ddd", {}, 8), "aaa bbb\ncccc ddd\n");
}

TEST(LayoutTest, MarginsAreCountedIn) {
  EXPECT_EQ(paragraph("aaaa bbbb cccc", {"- ", "  "}, 11), "- aaaa bbbb\n  cccc\n");
  EXPECT_EQ(paragraph("aaaa bbbb cccc", {"- ", "  "}, 10), "- aaaa\n  bbbb\n  cccc\n");
}

TEST(LayoutTest, BlanksInARowAreOne) {
  EXPECT_EQ(paragraph("  a   b  ", {"  ", "  "}, 20), "  a b\n");
  EXPECT_EQ(paragraph("", {"  ", "  "}, 20), "  \n");
}

TEST(LayoutTest, AWordThatIsLongerThanALineIsCut) {
  EXPECT_EQ(paragraph("abcdefghijklmnopqrstuv", {}, 10), "abcdefghij\nklmnopqrst\nuv\n");
  EXPECT_EQ(paragraph("x abcdefghijk", {"", " "}, 10), "x\n abcdefghi\n jk\n");
}

/// A text with a character of two bytes goes another way than one without.
TEST(LayoutTest, BothWaysOfSettingAgree) {
  const std::string words =
      "a bb ccc dddd eeeee ffffff ggggggg hhhhhhhhhhhhhhhhhhhhhhhhhhhhhhh i jj kkkkkkkkkk l";
  for (std::size_t width = 9; width < 90; ++width) {
    auto accented = paragraph(words + " \u00e4", {"- ", "   "}, width);
    accented.replace(accented.find("\u00e4"), 2, "z");
    EXPECT_EQ(paragraph(words + " z", {"- ", "   "}, width), accented) << width;
  }
}

TEST(LayoutTest, CharactersAreCountedNotBytes) {
  EXPECT_EQ(paragraph("ää öö üü", {}, 8), "ää öö üü\n");
  EXPECT_EQ(paragraph("ääääääääää€€€€€€€€€€", {}, 10), "ääääääääää\n€€€€€€€€€€\n");
}

TEST(LayoutTest, AMarginThatIsWiderThanTheLineLeavesRoom) {
  EXPECT_EQ(paragraph("abcdefgh ij", {"0123456789", "0123456789"}, 5), "0123456789abcdefgh\n0123456789ij\n");
}

TEST(LayoutTest, WhatCouldActOnATerminalIsMadeVisible) {
  EXPECT_EQ(visible("a\x1B[31m\n\t\x7F"), "a\\x1B[31m\\x0A\\x09\\x7F");
  EXPECT_EQ(visible("\u0085\u202E\u2066\u200F"), "\\u0085\\u202E\\u2066\\u200F");
  EXPECT_EQ(visible("a\xFF\xC3"), "a\uFFFD\uFFFD");
  EXPECT_EQ(visible("plain · … 😀 é"), "plain · … 😀 é");
  EXPECT_EQ(visible(std::string_view("\0", 1)), "\\x00");
}

TEST(LayoutTest, WhatStaysAsItIsKeepsItsBlanks) {
  EXPECT_EQ(verbatim("a  b   c", {"| ", "| "}, 20), "| a  b   c\n");
  EXPECT_EQ(verbatim("0123456789", {"", ""}, 9), "012345678\n9\n");
}

}  // namespace
}  // namespace tamo::support

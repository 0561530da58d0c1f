#include "values/text.hpp"

#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace tamo::values {
namespace {

using namespace std::string_view_literals;

std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines;
  std::optional<std::string_view> rest = text;
  while (rest)
    lines.emplace_back(takeLine(rest));
  return lines;
}

TEST(TextTest, TrimmingTakesSpacesAndTabsOffBothEnds) {
  EXPECT_EQ(trimmed(" \t a b \t"), "a b");
  EXPECT_EQ(trimmed("a"), "a");
  EXPECT_EQ(trimmed(" \t "), "");
  EXPECT_EQ(trimmed(""), "");
}

TEST(TextTest, TrimmingTakesEverySpaceSeparator) {
  const std::vector<std::string> separators{"\u00A0", "\u1680", "\u2000", "\u2001", "\u2002", "\u2003",
                                            "\u2004", "\u2005", "\u2006", "\u2007", "\u2008", "\u2009",
                                            "\u200A", "\u202F", "\u205F", "\u3000"};
  for (const auto& separator : separators) {
    EXPECT_EQ(trimmed(separator + "a" + separator), "a") << separator;
    EXPECT_EQ(trimmed(separator + " \t" + separator), "") << separator;
  }
}

TEST(TextTest, TrimmingKeepsLineBreaksAndTheZeroWidthSpace) {
  for (const auto* kept : {"\na\n", "\ra\r", "\va\v", "\fa\f", "\u200Ba\u200B", "\u2028a\u2028"}) {
    EXPECT_EQ(trimmed(kept), kept);
  }
}

TEST(TextTest, TrimmingKeepsWhatOnlyLooksLikeHalfASeparator) {
  EXPECT_EQ(trimmed("\xA0 a \xC2"), "\xA0 a \xC2");
  EXPECT_EQ(trimmed("\u00E0"), "\u00E0");
}

TEST(TextTest, TrimmingOneCharacterKeepsItWithin) {
  EXPECT_EQ(trimmed("\"a\"b\"\"", '"'), "a\"b");
  EXPECT_EQ(trimmed("...", '.'), "");
  EXPECT_EQ(trimmed("", '.'), "");
}

TEST(TextTest, OnlyTheLineFeedEndsALine) {
  EXPECT_EQ(linesOf("a\nb"), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(linesOf("a\r\nb\r"), (std::vector<std::string>{"a\r", "b\r"}));
  EXPECT_EQ(linesOf("a\u2028b"), (std::vector<std::string>{"a\u2028b"}));
}

TEST(TextTest, ALineFeedAtTheEndLeavesAnEmptyLine) {
  EXPECT_EQ(linesOf("a\n"), (std::vector<std::string>{"a", ""}));
  EXPECT_EQ(linesOf("\n\n"), (std::vector<std::string>{"", "", ""}));
  EXPECT_EQ(linesOf(""), (std::vector<std::string>{""}));
}

TEST(TextTest, ADecimalIntegerMayHaveOneSign) {
  EXPECT_EQ(decimalInt64("0"), 0);
  EXPECT_EQ(decimalInt64("+8"), 8);
  EXPECT_EQ(decimalInt64("-3"), -3);
  EXPECT_EQ(decimalInt64("007"), 7);
}

TEST(TextTest, AnythingButDigitsIsNoDecimalInteger) {
  for (const auto text : {""sv, "+"sv, "-"sv, "+-1"sv, "++1"sv, "--1"sv, " 1"sv, "1 "sv, "1a"sv, "1,2"sv,
                          "0x1"sv, "1.0"sv, "1\0"sv, "\u0661"sv}) {
    EXPECT_EQ(decimalInt64(text), std::nullopt) << text;
    EXPECT_EQ(decimalInt32(text), std::nullopt) << text;
  }
}

TEST(TextTest, ADecimalIntegerBeyondItsWidthIsAbsent) {
  EXPECT_EQ(decimalInt64("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(decimalInt64("9223372036854775808"), std::nullopt);
  EXPECT_EQ(decimalInt64("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(decimalInt64("-9223372036854775809"), std::nullopt);
  EXPECT_EQ(decimalInt32("2147483647"), std::numeric_limits<std::int32_t>::max());
  EXPECT_EQ(decimalInt32("2147483648"), std::nullopt);
  EXPECT_EQ(decimalInt32("-2147483648"), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(decimalInt32("-2147483649"), std::nullopt);
}

struct Repair {
  std::string_view what;
  std::string_view bytes;
  std::string_view repaired;
};

const std::vector<Repair>& repairs() {
  static const std::vector<Repair> table{
      {"a lone follower", "a\x80z", "a\uFFFDz"},
      {"overlong, two bytes", "\xC0\xAF", "\uFFFD\uFFFD"},
      {"overlong, three bytes", "\xE0\x80\xAF", "\uFFFD\uFFFD\uFFFD"},
      {"overlong, four bytes", "\xF0\x80\x80\xAF", "\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"a surrogate", "\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},
      {"beyond the last code point", "\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"cut off after three of four", "\xF0\x9F\x98", "\uFFFD"},
      {"cut off after two of three", "a\xE2\x82", "a\uFFFD"},
      {"cut off after one of two", "\xC3", "\uFFFD"},
      {"cut short by a letter", "\xE2\x82z", "\uFFFDz"},
      {"cut short by the next character", "\xE2\x82\xC3\xA9", "\uFFFD\u00E9"},
      {"never a lead byte", "\xF5\xFF", "\uFFFD\uFFFD"},
  };
  return table;
}

TEST(TextTest, EachMaximalInvalidPartBecomesOneReplacementCharacter) {
  for (const auto& repair : repairs()) {
    EXPECT_EQ(repairedUtf8(repair.bytes), repair.repaired) << repair.what;
    EXPECT_FALSE(isUtf8(repair.bytes)) << repair.what;
  }
}

TEST(TextTest, TheUtf8PrefixEndsBeforeTheFirstByteThatBeginsNoCharacter) {
  EXPECT_EQ(utf8Prefix(""), "");
  EXPECT_EQ(utf8Prefix("a\u00E9\0b"sv), "a\u00E9\0b"sv);
  EXPECT_EQ(utf8Prefix("\u00E9\xFFz"), "\u00E9");
  EXPECT_EQ(utf8Prefix("\u20AC\xE2\x82"), "\u20AC");
  EXPECT_EQ(utf8Prefix("\x80z"), "");
}

TEST(TextTest, WellFormedUtf8IsKept) {
  for (const auto text :
       {""sv, "a\0b"sv,
        "\u0080\u07FF\u0800\u1000\uCFFF\uD7FF\uE000\uFFFF\U00010000\U00040000\U000FFFFF\U0010FFFF"sv,
        "\uFEFFa\uFFFD"sv}) {
    EXPECT_TRUE(isUtf8(text)) << text;
    EXPECT_EQ(repairedUtf8(text), text);
  }
}

}  // namespace
}  // namespace tamo::values

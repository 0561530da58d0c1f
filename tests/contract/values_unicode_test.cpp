#include <gtest/gtest.h>
#include <vector>

#include "platform/unicode.hpp"

// The truth is what macOS answers; every backend's Unicode library is held to it.
namespace tamo::platform {
namespace {

using namespace std::string_view_literals;

struct Lowered {
  std::string_view text;
  std::string_view lower;
};

TEST(ValuesUnicodeTest, LowerCaseCoversAllOfUnicode) {
  const std::vector<Lowered> table{
      {"", ""},
      {"Library/Application SUPPORT", "library/application support"},
      {"\u00C4\u00DF\u1E9E", "\u00E4\u00DF\u00DF"},
      {"\u0416\u03A9", "\u0436\u03C9"},
      {"\u212A\u212B", "k\u00E5"},
      {"\u01C5", "\u01C6"},
      {"\u13A0", "\uAB70"},
      {"\U00010400", "\U00010428"},
      {"E\u0301", "e\u0301"},
      {"\u65E5\u672C 1", "\u65E5\u672C 1"},
  };
  for (const auto& row : table)
    EXPECT_EQ(lowercased(row.text), row.lower) << row.text;
}

TEST(ValuesUnicodeTest, TheDottedCapitalIKeepsItsDot) {
  EXPECT_EQ(lowercased("\u0130I"), "i\u0307i");
}

TEST(ValuesUnicodeTest, ASigmaWithinAWordIsTheCommonOne) {
  EXPECT_EQ(lowercased("\u03A3\u0391"), "\u03C3\u03B1");
}

TEST(ValuesUnicodeTest, BytesThatAreNoUtf8StayInLowerCase) {
  EXPECT_EQ(lowercased("A\xFF\xC3Z\xE2\x82"), "a\xFF\xC3z\xE2\x82");
  EXPECT_EQ(lowercased("A\0B"sv), "a\0b"sv);
}

TEST(ValuesUnicodeTest, CompositionDoesNotCountInEquality) {
  EXPECT_TRUE(canonicallyEqual("caf\u00E9", "cafe\u0301"));
  EXPECT_TRUE(canonicallyEqual("\u212B", "\u00C5"));
  EXPECT_TRUE(canonicallyEqual("\uAC00", "\u1100\u1161"));
  EXPECT_TRUE(canonicallyEqual("a\u0323\u0307", "a\u0307\u0323"));
  EXPECT_TRUE(canonicallyEqual("", ""));
}

TEST(ValuesUnicodeTest, WhatOnlyLooksAlikeIsNotEqual) {
  for (const auto& [left, right] : std::vector<std::pair<std::string_view, std::string_view>>{
           {"\u00E9", "e"},
           {"A", "a"},
           {"\uFB01", "fi"},
           {"\u00B2", "2"},
           {"a\u0301\u0300", "a\u0300\u0301"},
           {"a", "a\0"sv},
           {"a", ""},
       }) {
    EXPECT_FALSE(canonicallyEqual(left, right)) << left << " and " << right;
  }
}

TEST(ValuesUnicodeTest, BytesThatAreNoUtf8AreComparedAsTheyAre) {
  EXPECT_TRUE(canonicallyEqual("\xFF\u00E9", "\xFF\u00E9"));
  EXPECT_FALSE(canonicallyEqual("\xFF\u00E9",
                                "\xFF"
                                "e\u0301"));
  EXPECT_FALSE(canonicallyEqual("\xFF", "\xFE"));
  EXPECT_FALSE(canonicallyEqual("\u00E9", "\xFF"));
}

struct Counted {
  std::string_view text;
  std::size_t count;
};

const std::vector<Counted>& counts() {
  static const std::vector<Counted> table{
      {"", 0},
      {"abc", 3},
      {"cafe\u0301", 4},
      {"i\u0307", 1},
      {"a\r\nb", 3},
      {"a\n\rb", 4},
      {"\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7", 2},
      {"\U0001F468\u200D\U0001F469\u200D\U0001F467x", 2},
      {"\U0001F44D\U0001F3FD", 1},
      {"\u1100\u1161\u11A8", 1},
      {"\xFF\xFE", 2},
      {"\xFF\u0301", 2},
      {"a\xFF"
       "b",
       3},
  };
  return table;
}

TEST(ValuesUnicodeTest, CharactersAreCountedAsAPersonSeesThem) {
  for (const auto& row : counts())
    EXPECT_EQ(characterCount(row.text), row.count) << row.text;
}

TEST(ValuesUnicodeTest, DroppingCharactersCutsBetweenThem) {
  EXPECT_EQ(droppingCharacters("e\u0301\u00E9/x", 1), "\u00E9/x");
  EXPECT_EQ(droppingCharacters("e\u0301\u00E9/x", 2), "/x");
  EXPECT_EQ(droppingCharacters("\U0001F1E9\U0001F1EA!", 1), "!");
  EXPECT_EQ(droppingCharacters("\xFF\u0301"
                               "a",
                               1),
            "\u0301a");
  EXPECT_EQ(droppingCharacters("abc", 0), "abc");
}

TEST(ValuesUnicodeTest, DroppingAllThereIsLeavesNothing) {
  for (const auto& row : counts()) {
    EXPECT_EQ(droppingCharacters(row.text, row.count), "") << row.text;
    EXPECT_EQ(droppingCharacters(row.text, row.count + 5), "") << row.text;
    if (row.count > 0) {
      EXPECT_NE(droppingCharacters(row.text, row.count - 1), "") << row.text;
    }
  }
}

}  // namespace
}  // namespace tamo::platform

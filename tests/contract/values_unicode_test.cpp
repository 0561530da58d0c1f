#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "values/unicode.hpp"

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
    EXPECT_EQ(values::lowercased(row.text), row.lower) << row.text;
}

TEST(ValuesUnicodeTest, TheDottedCapitalIKeepsItsDot) {
  EXPECT_EQ(values::lowercased("\u0130I"), "i\u0307i");
}

TEST(ValuesUnicodeTest, ACapitalSigmaBecomesTheCommonOneWhereverItStands) {
  EXPECT_EQ(values::lowercased("\u03A3\u0391"), "\u03C3\u03B1");
  EXPECT_EQ(values::lowercased("\u0391\u03A3"), "\u03B1\u03C3");
  EXPECT_EQ(values::lowercased("\u0391\u03A3\u0301/\u0391\u03A3\xFF"), "\u03B1\u03C3\u0301/\u03B1\u03C3\xFF");
  EXPECT_EQ(values::lowercased("\u03C2"), "\u03C2");
}

TEST(ValuesUnicodeTest, BytesThatAreNoUtf8StayInLowerCase) {
  EXPECT_EQ(values::lowercased("A\xFF\xC3Z\xE2\x82"), "a\xFF\xC3z\xE2\x82");
  EXPECT_EQ(values::lowercased("\xA9"
                               "A"),
            "\xA9"
            "a");
  EXPECT_EQ(values::lowercased("A\0B"sv), "a\0b"sv);
}

TEST(ValuesUnicodeTest, CompositionDoesNotCountInEquality) {
  EXPECT_TRUE(values::canonicallyEqual("caf\u00E9", "cafe\u0301"));
  EXPECT_TRUE(values::canonicallyEqual("\u212B", "\u00C5"));
  EXPECT_TRUE(values::canonicallyEqual("\uAC00", "\u1100\u1161"));
  EXPECT_TRUE(values::canonicallyEqual("a\u0323\u0307", "a\u0307\u0323"));
  EXPECT_TRUE(values::canonicallyEqual("", ""));
}

/// A few characters beyond ASCII are taken apart into one of ASCII.
TEST(ValuesUnicodeTest, ATextOfAsciiHasOtherSpellings) {
  EXPECT_TRUE(values::canonicallyEqual("K", "\u212A"));
  EXPECT_TRUE(values::canonicallyEqual("\u037E", ";"));
  EXPECT_TRUE(values::canonicallyEqual("\u1FEF", "`"));
  EXPECT_FALSE(values::canonicallyEqual("k", "\u212A"));
  EXPECT_FALSE(values::canonicallyEqual("K", "k"));
}

TEST(ValuesUnicodeTest, TheLettersOfAsciiAndNothingBesideThemAreLowerCased) {
  EXPECT_EQ(values::lowercased("@ABCDEFGHIJKLMNOPQRSTUVWXYZ[`az{\x7F"),
            "@abcdefghijklmnopqrstuvwxyz[`az{\x7F");
}

TEST(ValuesUnicodeTest, AMarkWithPartsIsSortedIntoTheMarksBesideIt) {
  for (const auto& [mark, parts] : std::vector<std::pair<std::string, std::string>>{
           {"\u0F73", "\u0F71\u0F72"}, {"\u0F75", "\u0F71\u0F74"}, {"\u0F81", "\u0F71\u0F80"}}) {
    EXPECT_TRUE(values::canonicallyEqual("a\u036D" + mark, "a" + parts + "\u036D")) << parts;
    EXPECT_TRUE(values::canonicallyEqual(mark + "\u2DF6", parts + "\u2DF6")) << parts;
    EXPECT_FALSE(values::canonicallyEqual("a\u036D" + mark, "a\u036D" + parts + "\u036D")) << parts;
  }
}

TEST(ValuesUnicodeTest, MarksAreSortedHoweverManyThereAre) {
  for (const std::size_t count : {10U, 31U, 32U, 63U, 64U, 65U, 200U}) {
    std::string mixed = "a";
    std::string above;
    std::string below;
    for (std::size_t mark = 0; mark < count; ++mark) {
      mixed += "\u0344\u0323";
      above += "\u0308\u0301";
      below += "\u0323";
    }
    EXPECT_TRUE(values::canonicallyEqual(mixed, "a" + below + above)) << count;
    EXPECT_FALSE(values::canonicallyEqual(mixed, "a" + below + above + "\u0301")) << count;
    EXPECT_FALSE(values::canonicallyEqual(mixed + "\u0344", mixed + "\u0340")) << count;
  }
}

TEST(ValuesUnicodeTest, AByteOrderMarkIsACharacterLikeAnyOther) {
  EXPECT_FALSE(values::canonicallyEqual("\uFEFFa", "a"));
  EXPECT_FALSE(values::canonicallyEqual("\uFEFF", ""));
  EXPECT_TRUE(values::canonicallyEqual("\uFEFF\u00E9", "\uFEFFe\u0301"));
  EXPECT_EQ(values::lowercased("\uFEFF\uFEFFA"), "\uFEFF\uFEFFa");
}

TEST(ValuesUnicodeTest, CharactersBeyondTheFirstPlaneAreCompared) {
  EXPECT_TRUE(values::canonicallyEqual("\U0001D15E", "\U0001D157\U0001D165"));
  EXPECT_FALSE(values::canonicallyEqual("\U0001F600", "\U0001F601"));
  EXPECT_FALSE(values::canonicallyEqual("\U00010000", "\U0010FFFF"));
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
    EXPECT_FALSE(values::canonicallyEqual(left, right)) << left << " and " << right;
  }
}

TEST(ValuesUnicodeTest, BytesThatAreNoUtf8AreComparedAsTheyAre) {
  EXPECT_TRUE(values::canonicallyEqual("\xFF\u00E9", "\xFF\u00E9"));
  EXPECT_FALSE(values::canonicallyEqual("\xFF\u00E9",
                                        "\xFF"
                                        "e\u0301"));
  EXPECT_FALSE(values::canonicallyEqual("\xFF", "\xFE"));
  EXPECT_FALSE(values::canonicallyEqual("\u00E9", "\xFF"));
  EXPECT_FALSE(values::canonicallyEqual("\xA9", "\uFFFD"));
  EXPECT_FALSE(values::canonicallyEqual("\xA9", "\u00A9"));
}

}  // namespace
}  // namespace tamo::platform

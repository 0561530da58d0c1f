#include "mutation/tokens.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tamo::mutation {
namespace {

using ::testing::ElementsAre;

std::vector<std::string> texts(std::string_view source) {
  std::vector<std::string> all;
  for (const auto& token : tokens(source))
    all.emplace_back(token.text);
  return all;
}

TEST(TokensTest, CommentsAreNone) {
  EXPECT_THAT(texts("a /* b < c */ + // d\n e"), ElementsAre("a", "+", "e"));
}

TEST(TokensTest, WhatLooksLikeACommentInATextIsText) {
  EXPECT_THAT(texts(R"(f("// no \" comment"))"), ElementsAre("f", "(", R"("// no \" comment")", ")"));
}

TEST(TokensTest, ARawTextEndsWithItsOwnBracket) {
  EXPECT_THAT(texts("R\"x(a)\" \\ )x\" + b"), ElementsAre("R\"x(a)\" \\ )x\"", "+", "b"));
}

TEST(TokensTest, TheLongestSignIsTaken) {
  EXPECT_THAT(texts("a<=>b->c::d&&e<=f"),
              ElementsAre("a", "<=>", "b", "->", "c", "::", "d", "&&", "e", "<=", "f"));
}

TEST(TokensTest, ClosingBracketsOfTemplatesAreApart) {
  EXPECT_THAT(texts("a<b<c>>"), ElementsAre("a", "<", "b", "<", "c", ">", ">"));
}

TEST(TokensTest, ANumberKeepsItsMarksAndItsUnit) {
  EXPECT_THAT(texts("100'000 + 10ms"), ElementsAre("100'000", "+", "10ms"));
}

TEST(TokensTest, ADirectiveIsOneTokenWithItsContinuation) {
  EXPECT_THAT(texts("#define A \\\n  1\nb"), ElementsAre("#define A \\\n  1", "b"));
}

TEST(TokensTest, LinesAreCountedFromOne) {
  const auto all = tokens("a\n/* \n */ b");
  EXPECT_EQ(all.at(0).line, 1U);
  EXPECT_EQ(all.at(1).line, 3U);
}

TEST(TokensTest, AComparisonStandsBetweenBlanksAndATemplateDoesNot) {
  const auto all = tokens("a < b<c> d");
  EXPECT_TRUE(all.at(1).isBetween());
  EXPECT_FALSE(all.at(3).isBetween());
  EXPECT_FALSE(all.at(5).isBetween());
}

}  // namespace
}  // namespace tamo::mutation

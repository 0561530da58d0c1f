#include "stage/picture/picture_words.hpp"

#include <gtest/gtest.h>

namespace tamo::stage {
namespace {

using Texts = std::vector<std::string>;

TEST(PictureWordsTest, ACharacterTakesAColumnHoweverManyBytesItHas) {
  EXPECT_EQ(columnsOf("né·…"), 4U);
  EXPECT_EQ(columnsOf(""), 0U);
}

TEST(PictureWordsTest, WhatIsTooLongIsCutAndSaysSo) {
  EXPECT_EQ(cutTo("né·x", 4), "né·x");
  EXPECT_EQ(cutTo("né·xy", 4), "né·…");
  EXPECT_EQ(cutTo("ab", 1), "…");
  EXPECT_EQ(cutTo("ab", 0), "");
}

TEST(PictureWordsTest, LinesBreakAtBlanksAndInsideALongWord) {
  EXPECT_EQ(wrapped("one two three", 7), (Texts{"one two", "three"}));
  EXPECT_EQ(wrapped("one two three", 6), (Texts{"one", "two", "three"}));
  EXPECT_EQ(wrapped("abcdefgh", 3), (Texts{"abc", "def", "gh"}));
  EXPECT_EQ(wrapped("éééé é", 4), (Texts{"éééé", "é"}));
  EXPECT_EQ(wrapped(" abcdef", 3), (Texts{" ab", "cde", "f"}));
  EXPECT_EQ(wrapped("", 3), Texts{""});
}

}  // namespace
}  // namespace tamo::stage

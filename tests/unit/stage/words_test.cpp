#include "stage/common/words.hpp"

#include <gtest/gtest.h>

namespace tamo::stage {
namespace {

using Parts = std::vector<std::string_view>;

TEST(WordsTest, AnEmptyPartIsAPart) {
  EXPECT_EQ(split("a::b:", ':'), (Parts{"a", "", "b", ""}));
  EXPECT_EQ(split("", ':'), Parts{""});
}

TEST(WordsTest, OnlyTheSeparatorSeparates) {
  EXPECT_EQ(split("a b\tc", '\t'), (Parts{"a b", "c"}));
}

TEST(WordsTest, WordsAreJoinedBySingleBlanks) {
  EXPECT_EQ(joinedWords({"print", "gui/501"}), "print gui/501");
  EXPECT_EQ(joinedWords({"alone"}), "alone");
  EXPECT_EQ(joinedWords({}), "");
}

}  // namespace
}  // namespace tamo::stage

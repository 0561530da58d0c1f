#include "acceptance/log_line.hpp"

#include <gtest/gtest.h>

#include "platform/log_text.hpp"

namespace tamo::acceptance {
namespace {

using enum Mark;
using Marks = std::vector<Mark>;

TEST(MarksOfFormatTest, EachPlaceholderHasItsMark) {
  EXPECT_EQ(marksOfFormat(platform::formatText(platform::LogFormat::outcome)),
            (Marks{Public, Public, Public, Public, Public, Private}));
  EXPECT_EQ(marksOfFormat(platform::formatText(platform::LogFormat::definition)),
            (Marks{Public, Public, Public, Public, Public}));
  EXPECT_EQ(marksOfFormat("%{bool,public}d of %{private}s"), (Marks{Public, Private}));
}

TEST(MarksOfFormatTest, APlaceholderWithoutAMarkIsPrivateAndAPercentIsNone) {
  EXPECT_EQ(marksOfFormat("100%% of %s and %ld"), (Marks{Private, Private}));
  EXPECT_EQ(marksOfFormat("%{public"), Marks{Private});
  EXPECT_EQ(marksOfFormat(""), Marks{});
}

TEST(ComparableTest, TheHiddenDescriptionOfAnOutcomeIsLeftOut) {
  EXPECT_EQ(comparable({.text = "status -> status 0 ok Optional(true)<private>"}),
            "status -> status 0 ok Optional(true)");
  EXPECT_EQ(comparable({.text = "status -> status 0 ok Optional(true)"}),
            "status -> status 0 ok Optional(true)");
  EXPECT_EQ(comparable({.text = "hardstop <private>"}), "hardstop <private>");
}

TEST(ComparableTest, AnErrorIsTold) {
  EXPECT_EQ(comparable({.level = Level::Error, .text = "receipt failed"}), "error receipt failed");
}

TEST(MatchesTest, AStarIsAnyText) {
  EXPECT_TRUE(matches("status -> status * ok Optional(*)", "status -> status 3 ok Optional(true)"));
  EXPECT_TRUE(matches("*", ""));
  EXPECT_TRUE(matches("a*b*c", "aXbYbZc"));
  EXPECT_FALSE(matches("a*c", "acd"));
  EXPECT_FALSE(matches("status", "status 1"));
  EXPECT_FALSE(matches("", "x"));
}

TEST(EndsActionTest, OutcomesRefusalsAndMovesDo) {
  EXPECT_TRUE(endsAction({.text = "sync -> status 1 ok Optional(true)"}));
  EXPECT_TRUE(endsAction({.text = "move-to-applications -> moved"}));
  EXPECT_TRUE(endsAction({.text = "move refused: this Tamo doesn't need moving"}));
  EXPECT_FALSE(endsAction({.text = "hardstop pid 7: exited"}));
  EXPECT_FALSE(endsAction({.text = "definition: loaded a exit 1 · bundled a exit 1 · changed false"}));
}

}  // namespace
}  // namespace tamo::acceptance

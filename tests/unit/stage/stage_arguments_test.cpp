#include "stage/control/stage_arguments.hpp"

#include <gtest/gtest.h>

namespace tamo::stage {
namespace {

using Words = std::vector<std::string>;

TEST(StageArgumentsTest, WordsAreTakenInOrder) {
  StageArguments arguments({"a", "b"});
  EXPECT_EQ(arguments.take("first"), "a");
  EXPECT_EQ(arguments.takeAny(), "b");
  EXPECT_EQ(arguments.takeAny(), std::nullopt);
  EXPECT_NO_THROW(arguments.finish());
}

TEST(StageArgumentsTest, AMissingWordIsNamed) {
  StageArguments arguments({});
  try {
    static_cast<void>(arguments.take("stage"));
    FAIL();
  } catch (const UsageError& error) {
    EXPECT_STREQ(error.what(), "missing stage");
  }
}

TEST(StageArgumentsTest, OptionsStandAnywhere) {
  StageArguments arguments({"a", "--build", "7", "--bare", "b"});
  EXPECT_EQ(arguments.takeOption("--build"), "7");
  EXPECT_TRUE(arguments.takeFlag("--bare"));
  EXPECT_FALSE(arguments.takeFlag("--bare"));
  EXPECT_EQ(arguments.takeRest(), (Words{"a", "b"}));
}

TEST(StageArgumentsTest, AnOptionWithoutItsWordIsRefused) {
  StageArguments arguments({"a", "--build"});
  EXPECT_THROW(static_cast<void>(arguments.takeOption("--build")), UsageError);
}

TEST(StageArgumentsTest, ANextOptionMustComeNext) {
  StageArguments arguments({"--copy", "x", "--core-action", "--copy"});
  EXPECT_EQ(arguments.takeNextOption("--copy"), "x");
  EXPECT_EQ(arguments.takeNextOption("--copy"), std::nullopt);
  EXPECT_EQ(arguments.takeRest(), (Words{"--core-action", "--copy"}));
}

TEST(StageArgumentsTest, ATailIsEverythingAfterItsOption) {
  StageArguments arguments({"a", "--arguments", "--binary", "b"});
  EXPECT_EQ(arguments.takeTail("--arguments"), (Words{"--binary", "b"}));
  EXPECT_EQ(arguments.takeRest(), Words{"a"});
}

TEST(StageArgumentsTest, WhatIsLeftIsRefused) {
  const StageArguments arguments({"--bear"});
  EXPECT_THROW(arguments.finish(), UsageError);
}

TEST(StageArgumentsTest, AChoiceIsOneOfItsWords) {
  StageArguments arguments({"granted", "maybe"});
  EXPECT_EQ(arguments.takeOneOf("approval", {"granted", "withheld"}), "granted");
  EXPECT_THROW(static_cast<void>(arguments.takeOneOf("approval", {"granted", "withheld"})), UsageError);
}

TEST(StageArgumentsTest, AWholeNumberIsZeroOrMore) {
  EXPECT_EQ(wholeNumber("0", "count"), 0);
  EXPECT_EQ(wholeNumber("17", "count"), 17);
  for (const auto* text : {"", "-1", "1.5", "x", "99999999999"})
    EXPECT_THROW(static_cast<void>(wholeNumber(text, "count")), UsageError) << text;
}

}  // namespace
}  // namespace tamo::stage

#include "support/json_line.hpp"

#include <gtest/gtest.h>

/// Objects of `log show --style ndjson`.
namespace tamo::support {
namespace {

std::optional<std::string> message(std::string_view line) {
  const auto object = logObject(line);
  return object ? object->message : std::nullopt;
}

TEST(JsonLineTest, TheMembersThatAreOfUseAreTaken) {
  const auto object = logObject(
      R"({"traceID":1,"eventMessage":"a","eventType":"logEvent","source":null,"subsystem":"s","processID":812,)"
      R"("backtrace":{"frames":[{"imageOffset":5,"imageUUID":"}]\""}]},"messageType":"Error","timestamp":"t",)"
      R"("formatString":"%{public}s"})");
  ASSERT_TRUE(object);
  EXPECT_EQ(object->message, "a");
  EXPECT_EQ(object->event, "logEvent");
  EXPECT_EQ(object->subsystem, "s");
  EXPECT_EQ(object->process, "812");
  EXPECT_EQ(object->type, "Error");
  EXPECT_EQ(object->timestamp, "t");
  EXPECT_EQ(object->format, "%{public}s");
}

TEST(JsonLineTest, EscapesAreWhatTheyStandFor) {
  EXPECT_EQ(message(R"({"eventMessage":"\/a\"b\\c\n\t\r\b\f"})"), "/a\"b\\c\n\t\r\b\f");
  EXPECT_EQ(message(R"({"eventMessage":"\u0041\u00b7\u2026\ud83d\ude00"})"), "A·…😀");
}

TEST(JsonLineTest, HalfOfAPairIsNobodysCharacter) {
  EXPECT_EQ(message(R"({"eventMessage":"\ud83dx\ude00\ud83d\u0041"})"), "\uFFFDx\uFFFD\uFFFDA");
}

TEST(JsonLineTest, AnEscapeThatIsNoneStandsForItself) {
  EXPECT_EQ(message(R"({"eventMessage":"\x\u12g4"})"), "xu12g4");
}

TEST(JsonLineTest, BlanksBetweenTheMembersDoNotMatter) {
  EXPECT_EQ(message("  { \"eventMessage\" : \"a\" , \"b\" : 1 }  "), "a");
}

TEST(JsonLineTest, OfTwoMembersWithOneNameTheLastCounts) {
  EXPECT_EQ(message(R"({"eventMessage":"a","eventMessage":"b"})"), "b");
}

TEST(JsonLineTest, AnObjectWithoutAMessageHasNone) {
  EXPECT_TRUE(logObject("{}"));
  EXPECT_TRUE(logObject(R"({"count":11,"finished":1})"));
  EXPECT_EQ(message(R"({"count":11,"finished":1})"), std::nullopt);
}

TEST(JsonLineTest, WhatIsNotAWholeObjectIsNone) {
  for (const auto* line :
       {"", "{", "[]", "{\"a\"}", "{\"a\":}", "{\"a\":1", "{\"a\":\"b}", "{\"a\":\"b\\", "{\"a\":[1}",
        "{\"a\":{}", "{\"a\":1,}", "{\"a\":1} x", "x{\"a\":1}", "{a:1}", "{\"a\":]}"})
    EXPECT_FALSE(logObject(line)) << line;
}

}  // namespace
}  // namespace tamo::support

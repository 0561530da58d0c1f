#include "move/move_result_reader.hpp"

#include <gtest/gtest.h>

namespace tamo::AppMove {
namespace {

std::optional<DecodingError> errorOf(std::string_view bytes) {
  const auto result = decoded(bytes);
  if (result) return std::nullopt;
  return result.error();
}

TEST(MoveResultReaderTest, WhatIsRecordedIsReadBack) {
  for (const auto& result : {Result{true, "moved"}, Result{false, "copy_failed"},
                             Result{false, "\"a\"\\/\b\f\n\r\t\x01 d\u2019\U0001F600"}}) {
    EXPECT_EQ(decoded(encoded(result)), result) << encoded(result);
  }
}

TEST(MoveResultReaderTest, OrderAndBlanksDoNotMatter) {
  EXPECT_EQ(decoded("\n{ \"code\" :\t\"moved\",\r\n\"ok\": true }\n"), (Result{true, "moved"}));
}

TEST(MoveResultReaderTest, OtherMembersAreIgnored) {
  EXPECT_EQ(decoded(R"({"0":1,"OK":false,"ok":true,"code":"moved","more":{"ok":1}})"),
            (Result{true, "moved"}));
}

TEST(MoveResultReaderTest, OfTwoMembersWithOneNameTheLastCounts) {
  EXPECT_EQ(decoded(R"({"ok":false,"code":"moved","ok":true})"), (Result{true, "moved"}));
}

TEST(MoveResultReaderTest, TheReaderDoesNotJudgeTheCode) {
  EXPECT_EQ(decoded(R"({"ok":true,"code":"cancelled"})"), (Result{true, "cancelled"}));
  EXPECT_EQ(decoded(R"({"ok":false,"code":"moved"})"), (Result{false, "moved"}));
  EXPECT_EQ(decoded(R"({"ok":false,"code":"no_helper"})"), (Result{false, "no_helper"}));
  EXPECT_EQ(decoded(R"({"ok":true,"code":""})"), (Result{true, ""}));
  EXPECT_EQ(decoded(R"({"ok":true,"code":" Moved "})"), (Result{true, " Moved "}));
}

TEST(MoveResultReaderTest, ResultsThatDifferInOneMemberAreDifferent) {
  const Result result{true, "moved"};
  EXPECT_NE(result, (Result{false, "moved"}));
  EXPECT_NE(result, (Result{true, "opened"}));
}

TEST(MoveResultReaderTest, BothMembersAreNeeded) {
  for (const auto* bytes : {R"({"ok":true})", R"({"code":"moved"})", R"({})", R"({"Ok":true,"code":"a"})",
                            R"({"0":true,"1":"moved"})", R"({"ok ":true,"code":"moved"})",
                            R"({"result":{"ok":true,"code":"moved"}})"}) {
    EXPECT_EQ(errorOf(bytes), DecodingError::memberMissing) << bytes;
  }
}

TEST(MoveResultReaderTest, EachMemberHasItsType) {
  for (const auto* bytes :
       {R"({"ok":"yes","code":"moved"})", R"({"ok":"true","code":"moved"})", R"({"ok":1,"code":"moved"})",
        R"({"ok":null,"code":"moved"})", R"({"ok":true,"code":5})", R"({"ok":true,"code":null})",
        R"({"ok":true,"code":["moved"]})", R"({"ok":1.0,"code":"moved"})", R"({"ok":0,"code":"moved"})",
        R"({"ok":[],"code":"moved"})", R"({"ok":true,"code":true})", R"({"ok":true,"code":{}})"}) {
    EXPECT_EQ(errorOf(bytes), DecodingError::memberOfAnotherType) << bytes;
  }
}

TEST(MoveResultReaderTest, AnythingButOneObjectIsAnError) {
  for (const auto* bytes :
       {"", "[]", "true", R"(["ok","code"])", R"({"ok":true,"code":"moved")",
        R"({"ok":true,"code":"moved"}x)", R"({"ok":true,"code":"moved",})", R"({ok:true,"code":"moved"})",
        R"({"ok":True,"code":"moved"})", R"({"ok":true,"code":"moved"} // a remark)",
        R"({'ok':true,'code':'moved'})", R"({"ok":true,"code":"moved"}{})", R"([{"ok":true,"code":"moved"}])",
        "{\"ok\":true,\"code\":\"\xFF\"}"}) {
    EXPECT_EQ(errorOf(bytes), DecodingError::notAnObject) << bytes;
  }
}

}  // namespace
}  // namespace tamo::AppMove

#include "values/json_text.hpp"

#include <gtest/gtest.h>
#include <vector>

namespace tamo::values {
namespace {

using namespace std::string_view_literals;

TEST(JsonTextTest, AStringStandsInQuotes) {
  EXPECT_EQ(jsonString("moved"), R"("moved")");
  EXPECT_EQ(jsonString(""), R"("")");
}

TEST(JsonTextTest, QuoteBackslashAndSlashAreEscaped) {
  EXPECT_EQ(jsonString(R"("a"\b/c)"), R"("\"a\"\\b\/c")");
}

TEST(JsonTextTest, FiveControlCharactersHaveALetter) {
  EXPECT_EQ(jsonString("\b\f\n\r\t"), R"("\b\f\n\r\t")");
}

TEST(JsonTextTest, OtherControlCharactersAreHexadecimalInLowerCase) {
  EXPECT_EQ(jsonString("\0\x01\v\x0F\x10\x1B\x1F"sv), R"("\u0000\u0001\u000b\u000f\u0010\u001b\u001f")");
}

TEST(JsonTextTest, TheRestStaysAsItIs) {
  for (const auto text : {" ~"sv, "\x7F"sv, "\u0080"sv, "d\u2019\u00E9\U0001F600"sv, "\u2028"sv, "<&>'"sv}) {
    EXPECT_EQ(jsonString(text), '"' + std::string(text) + '"');
  }
}

}  // namespace
}  // namespace tamo::values

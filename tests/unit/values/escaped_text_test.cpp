#include "values/escaped_text.hpp"

#include <gtest/gtest.h>

namespace tamo::values {
namespace {

TEST(EscapedTextTest, WhatWouldBreakALineIsMarked) {
  EXPECT_EQ(escaped("a b·{c}"), "a b·{c}");
  EXPECT_EQ(escaped("a\tb\nc\\d"), "a\\tb\\nc\\\\d");
  EXPECT_EQ(escaped("{a\\}", "{}"), "\\{a\\\\\\}");
}

/// A terminal would obey them and show another line than the one that was logged.
TEST(EscapedTextTest, WhatATerminalObeysIsItsNumber) {
  EXPECT_EQ(escaped("a\rb\x1b[2Kc\x7f\x01"), "a\\x0db\\x1b[2Kc\\x7f\\x01");
  EXPECT_EQ(escaped(" ~\xc3\xbc"), " ~\xc3\xbc");
}

TEST(EscapedTextTest, WhatWasEscapedIsReadAsItWas) {
  const std::string text("a\tb\nc\\d{\x1b}\0\x7f", 12);
  EXPECT_EQ(unescaped(escaped(text, "{}")), text);
  EXPECT_EQ(unescaped(""), "");
}

TEST(EscapedTextTest, WhatIsNoEscapeStandsForItself) {
  EXPECT_EQ(unescaped("\\q\\xg0\\x1"), "qxg0x1");
  EXPECT_EQ(unescaped("a\\"), "a\\");
  EXPECT_EQ(unescaped("\\"), "\\");
}

}  // namespace
}  // namespace tamo::values

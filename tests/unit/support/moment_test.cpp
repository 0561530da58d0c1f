#include "support/moment.hpp"

#include <gtest/gtest.h>

/// The times of log lines.
namespace tamo::support {
namespace {

std::optional<std::int64_t> micros(std::string_view text) {
  const auto moment = takeMoment(text);
  return moment && text.empty() ? std::optional(moment->micros()) : std::nullopt;
}

TEST(MomentTest, EveryStyleOfTimeIsRead) {
  EXPECT_EQ(micros("1970-01-01 00:00:01.000002+0000"), 1'000'002);
  EXPECT_EQ(micros("1970-01-01 02:00:00.5+0130"), 1'800'500'000);
  EXPECT_EQ(micros("1969-12-31 23:00:00.000-0100"), 0);
  EXPECT_EQ(micros("1970-01-01T00:00:00.789Z"), 789'000);
  EXPECT_EQ(micros("1970-01-01 00:00:00.789"), 789'000);
  EXPECT_EQ(micros("1970-01-01 00:00:00"), 0);
  EXPECT_EQ(micros("2024-02-29 23:59:60"), micros("2024-03-01 00:00:00"));
}

TEST(MomentTest, DigitsBeyondTheSixthAreDropped) {
  EXPECT_EQ(micros("1970-01-01 00:00:00.1234567890123Z"), 123'456);
}

TEST(MomentTest, WhatIsNoTimeIsNone) {
  for (const auto* text : {"", "1970", "1970-13-01 00:00:00", "2023-02-29 00:00:00", "1970-01-01 24:00:00",
                           "1970-01-01 00:60:00", "1970-01-01 00:00:61", "1970-01-01_00:00:00",
                           "197a-01-01 00:00:00", "1970-01-01 00:00:0"})
    EXPECT_EQ(micros(text), std::nullopt) << text;
}

TEST(MomentTest, WhatFollowsStays) {
  std::string_view text = "1970-01-01 00:00:00.000 Df Tamo Core[1:2]";
  EXPECT_FALSE(takeMoment(text)->zoneMinutes);
  EXPECT_EQ(text, " Df Tamo Core[1:2]");
  text = "1970-01-01 00:00:00.000+9999 x";
  EXPECT_FALSE(takeMoment(text)->zoneMinutes);
  EXPECT_EQ(text, "+9999 x");
  text = "no time";
  EXPECT_FALSE(takeMoment(text));
  EXPECT_EQ(text, "no time");
}

std::string shown(std::string_view text) {
  return dayAndTime(*takeMoment(text));
}

TEST(MomentTest, ATimeIsShownAsItsLogHasIt) {
  EXPECT_EQ(shown("2026-11-21 23:00:00.123456+0100"), "2026-11-21 23:00:00.123 +0100");
  EXPECT_EQ(shown("2026-11-21 03:04:05.999999-0730"), "2026-11-21 03:04:05.999 -0730");
  EXPECT_EQ(shown("2024-02-29T12:34:56.789Z"), "2024-02-29 12:34:56.789 UTC");
  EXPECT_EQ(shown("2024-02-29 12:34:56.789"), "2024-02-29 12:34:56.789");
  EXPECT_EQ(shown("1969-12-31 23:59:59.001"), "1969-12-31 23:59:59.001");
}

TEST(MomentTest, ALengthIsToldAsPeopleDo) {
  EXPECT_EQ(lasting(0), "0.0 s");
  EXPECT_EQ(lasting(2'590'000), "2.5 s");
  EXPECT_EQ(lasting(-59'999'999), "59.9 s");
  EXPECT_EQ(lasting(60'000'000), "1 min 0 s");
  EXPECT_EQ(lasting(3'599'999'999), "59 min 59 s");
  EXPECT_EQ(lasting(7'260'000'000), "2 h 1 min");
}

}  // namespace
}  // namespace tamo::support

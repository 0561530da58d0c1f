#include "stage/picture/journal_reading.hpp"

#include <gtest/gtest.h>

#include "journal_builder.hpp"

namespace tamo::stage {
namespace {

std::vector<std::int64_t> timesOf(const JournalReading& reading) {
  std::vector<std::int64_t> times;
  for (const auto& moment : reading.moments)
    times.push_back(moment.at);
  return times;
}

TEST(JournalReadingTest, AnEmptyJournalHasNothing) {
  const auto reading = readJournal("");
  EXPECT_TRUE(reading.moments.empty());
  EXPECT_FALSE(reading.cutOff);
  EXPECT_EQ(reading.unreadable, 0U);
}

TEST(JournalReadingTest, AMomentIsReadWithItsTexts) {
  const auto reading = readJournal("12\t34\tstarts\t56\t/bin/a b\tline\\nbreak\n");
  ASSERT_EQ(reading.moments.size(), 1U);
  EXPECT_EQ(reading.moments[0],
            (Moment{.at = 12, .pid = 34, .word = "starts", .texts = {"56", "/bin/a b", "line\nbreak"}}));
  EXPECT_EQ(numberIn(reading.moments[0], 0), 56);
  EXPECT_EQ(textsFrom(reading.moments[0], 1), "/bin/a b line\nbreak");
}

TEST(JournalReadingTest, LinesOfAnotherProgramAreCountedAndLeftOut) {
  const auto reading = readJournal(
      "2026-01-02T03:04:05.678Z\t12\tdefault\tstudio.pell\tlifecycle\tsync -> status 1\tx\n"
      "2026-01-02T03:04:05.678Z launchd begins as pid 12\n"
      "\n"
      "12\t34\tdances\n"
      "12\t34\n"
      "12\t0\tlaunchd\n"
      "-1\t34\tlaunchd\n"
      "12\t34\tjob\tfive\tlabel\n"
      "12\t34\tjob\t5\n"
      "1000000000000001\t34\tlaunchd\n"
      "12\t34\tlaunchd\n");
  EXPECT_EQ(reading.unreadable, 10U);
  EXPECT_EQ(timesOf(reading), std::vector<std::int64_t>{12});
}

TEST(JournalReadingTest, ALastLineWithoutItsEndIsCutOffAndNoMoment) {
  const auto reading = readJournal("12\t34\tlaunchd\n13\t34\tjob\t5\tlab");
  EXPECT_TRUE(reading.cutOff);
  EXPECT_EQ(timesOf(reading), std::vector<std::int64_t>{12});
  EXPECT_EQ(reading.unreadable, 0U);
}

TEST(JournalReadingTest, WritersThatWereHeldUpAreReadInTheOrderOfTheirTimes) {
  const auto reading = readJournal("2000000\t1\tlaunchd\n1000000\t2\twatches\n2000000\t3\twatched\n");
  EXPECT_EQ(timesOf(reading), (std::vector<std::int64_t>{1'000'000, 2'000'000, 2'000'000}));
  EXPECT_EQ(reading.moments[1].pid, 1) << "what has one time stays in the order of the file";
  EXPECT_EQ(reading.setBacks, 0U);
}

TEST(JournalReadingTest, AClockThatWentBackStoodStill) {
  const auto reading = readJournal(
      "9000000\t1\tlaunchd\n7999999\t1\tlaunchd\n8000009\t1\tlaunchd\n5\t1\tlaunchd\n7\t1\tlaunchd\n");
  EXPECT_EQ(reading.setBacks, 2U);
  EXPECT_EQ(timesOf(reading),
            (std::vector<std::int64_t>{9'000'000, 9'000'000, 9'000'010, 9'000'010, 9'000'012}));
}

TEST(JournalReadingTest, BytesThatAreNoTextBecomeOne) {
  const auto reading = readJournal("1\t2\tsays\ta\xFFz\n");
  ASSERT_EQ(reading.moments.size(), 1U);
  EXPECT_EQ(reading.moments[0].texts[0], "a\xEF\xBF\xBDz");
}

TEST(JournalReadingTest, EveryWordOfARestartIsKnown) {
  EXPECT_EQ(hangingRestart().reading().unreadable, 0U);
}

}  // namespace
}  // namespace tamo::stage

#include "platform/stage/journal.hpp"

#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

#include "stage/picture/journal_reading.hpp"
#include "temporary_stage.hpp"

namespace tamo::stage {
namespace {

TEST(JournalTest, AMomentIsALineOfItsTimeThePidTheWordAndTheTexts) {
  EXPECT_EQ(journalLine(12, 34, "job", {"56", "a label"}), "12\t34\tjob\t56\ta label\n");
  EXPECT_EQ(journalLine(12, 34, "launchd", {}), "12\t34\tlaunchd\n");
}

TEST(JournalTest, ATextComesBackAsItWas) {
  for (const auto* text : {"", "plain", "a\tb\nc\\d\\\\n", "\\", "\\t", "é·", "\x1b[2J\x7f", "\\x1b"}) {
    EXPECT_EQ(textFromJournal(journalText(text)), text);
    EXPECT_EQ(journalText(text).find_first_of("\t\n"), std::string::npos) << text;
  }
}

TEST(JournalTest, ALongTextIsCutBetweenTwoCharacters) {
  EXPECT_EQ(journalText(std::string(600, 'a')), std::string(600, 'a'));
  EXPECT_EQ(journalText(std::string(601, 'a')), std::string(600, 'a') + "…");
  EXPECT_EQ(journalText(std::string(599, 'a') + "éé"), std::string(599, 'a') + "…");
}

TEST(JournalTest, MomentsAreAddedBehindThoseOfOthersInTheOrderOfTheClock) {
  const TemporaryStage stage;
  stage.write("/.stage/journal", "1\t2\tlaunchd\n");
  const Journal journal(stage.root);
  journal.note("says", {"one"});
  journal.note("says", {"two"});
  const auto moments = readJournal(stage.read("/.stage/journal")).moments;
  ASSERT_EQ(moments.size(), 3U);
  EXPECT_EQ(moments[0].word, "launchd");
  EXPECT_EQ(moments[1].texts, std::vector<std::string>{"one"});
  EXPECT_EQ(moments[2].pid, ::getpid());
  EXPECT_LE(moments[1].at, moments[2].at);
  EXPECT_GT(moments[1].at, 1);
}

TEST(JournalTest, WhereThereIsNoJournalNothingIsNotedAndNothingIsMade) {
  const TemporaryStage stage;
  errno = ERANGE;
  Journal(stage.root).note("launchd");
  EXPECT_EQ(errno, ERANGE) << "whoever was in the middle of a call still has its error";
  EXPECT_FALSE(std::filesystem::exists(stage.path + "/.stage/journal"));
}

}  // namespace
}  // namespace tamo::stage

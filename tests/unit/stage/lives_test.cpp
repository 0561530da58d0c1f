#include "stage/picture/lives.hpp"

#include <gtest/gtest.h>

#include "journal_builder.hpp"

namespace tamo::stage {
namespace {

constexpr std::int64_t milliseconds = 1000;

std::int64_t at(std::int64_t time) {
  return JournalBuilder::hour + time * milliseconds;
}

TEST(LivesTest, AProcessLivesFromItsBeginToItsEnd) {
  const auto lives = livesIn(hangingRestart().reading().moments);
  const auto core = lives[*lifeOf(50, at(9999), lives)];
  EXPECT_EQ(core.role, Role::Core);
  EXPECT_EQ(core.from, at(10));
  EXPECT_EQ(core.until, at(3475));
  EXPECT_EQ(core.ending, "signal 9");
  const auto companion = lives[*lifeOf(100, at(9999), lives)];
  EXPECT_EQ(companion.role, Role::Companion);
  EXPECT_EQ(companion.until, at(3522));
  EXPECT_FALSE(lives[*lifeOf(60, at(9999), lives)].until.has_value());
}

TEST(LivesTest, StarterAndStartedTellOfOneLifeWhoeverIsFirst) {
  const auto lives = livesIn(hangingRestart().reading().moments);
  EXPECT_EQ(lives.size(), 7U) << "launchd, two Cores, a helper, the companion, two tools and nobody twice";
  const auto print = lives[*lifeOf(101, at(9999), lives)];
  EXPECT_EQ(print.name, "launchctl print");
  EXPECT_EQ(print.parent, 100);
  EXPECT_EQ(print.from, at(1410));
  EXPECT_EQ(print.until, at(1413)) << "its own word, not when its end was seen";
}

TEST(LivesTest, APidThatIsUsedAgainIsAnotherLife) {
  JournalBuilder journal;
  journal.note(0, 7, "companion").note(5, 7, "terminates").note(9000, 7, "companion");
  const auto lives = livesIn(journal.reading().moments);
  ASSERT_EQ(lives.size(), 2U);
  EXPECT_EQ(lives[0].until, at(5));
  EXPECT_FALSE(lives[1].until.has_value());
  EXPECT_EQ(lifeOf(7, at(8000), lives), 0U);
  EXPECT_EQ(lifeOf(7, at(9000), lives), 1U);
}

TEST(LivesTest, ACompanionWhoseTerminateRequestReturnsEndsLater) {
  JournalBuilder journal;
  journal.note(0, 7, "companion").note(5, 7, "terminates").note(6, 7, "unlocks");
  EXPECT_EQ(livesIn(journal.reading().moments)[0].until, at(6));
}

TEST(LivesTest, AToolThatDoesNotNoteItsEndEndsWhenThatIsSeen) {
  JournalBuilder journal;
  journal.note(0, 7, "companion").note(1, 7, "starts", {"8", "/usr/bin/ditto", "/a", "/b"});
  journal.note(5, 7, "tool-ended", {"8", "3"});
  const auto lives = livesIn(journal.reading().moments);
  EXPECT_EQ(lives[1].name, "ditto");
  EXPECT_EQ(lives[1].until, at(5));
  EXPECT_EQ(lives[1].ending, "status 3");
}

TEST(LivesTest, AToolThatCouldNotBeStartedIsNoLife) {
  JournalBuilder journal;
  journal.note(0, 7, "companion").note(1, 7, "starts", {"0", "/usr/bin/osascript"});
  EXPECT_EQ(livesIn(journal.reading().moments).size(), 1U);
}

TEST(LivesTest, WhoBeganBeforeTheJournalIsMetByWhatItNotes) {
  JournalBuilder journal;
  journal.note(0, 1, "asked", {"print", "gui/501/x"}).note(1, 50, "says", {"is up"});
  const auto lives = livesIn(journal.reading().moments);
  ASSERT_EQ(lives.size(), 2U);
  EXPECT_EQ(lives[0].role, Role::Launchd);
  EXPECT_EQ(lives[1].role, Role::Core);
}

TEST(LivesTest, ASignalToAGroupHitsWhoLivesInIt) {
  const auto moments = hangingRestart().reading().moments;
  const auto lives = livesIn(moments);
  std::vector<std::vector<std::int32_t>> hit;
  for (const auto& moment : moments) {
    if (moment.word != "signals") continue;
    hit.emplace_back();
    for (const auto life : targetsOf(moment, lives))
      hit.back().push_back(lives[life].pid);
  }
  EXPECT_EQ(hit, (std::vector<std::vector<std::int32_t>>{{50}, {50, 51}, {51}}))
      << "what launchd signals is the rest of a group whose leader is dead";
}

TEST(LivesTest, AHelperIsInTheGroupOfItsCore) {
  JournalBuilder journal;
  journal.note(0, 50, "core", {"44"}).note(1, 51, "helper", {"50"});
  EXPECT_EQ(livesIn(journal.reading().moments)[1].group, 44);
}

}  // namespace
}  // namespace tamo::stage

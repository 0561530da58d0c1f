#include "stage/picture/picture_of.hpp"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "journal_builder.hpp"

/// What a picture says of a whole action, before it is drawn.
namespace tamo::stage {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::vector<std::string> namesOf(const Picture& picture) {
  std::vector<std::string> names;
  for (const auto& row : picture.rows)
    names.push_back(row.name);
  return names;
}

const Row& rowOf(const Picture& picture, const std::string& name) {
  static const Row none;
  const auto found = std::ranges::find(picture.rows, name, &Row::name);
  EXPECT_NE(found, picture.rows.end()) << name;
  return found == picture.rows.end() ? none : *found;
}

/// "FROM-UNTIL LABEL" in milliseconds, of the spans of one kind.
std::vector<std::string> spansOf(const Row& row, SpanKind kind) {
  std::vector<std::string> spans;
  for (const auto& span : row.spans)
    if (span.kind == kind)
      spans.push_back(std::to_string(span.from / 1000) + "-" + std::to_string(span.until / 1000) + " " +
                      span.label);
  return spans;
}

TEST(PictureOfTest, WithoutAnActionThereIsNone) {
  JournalBuilder journal;
  EXPECT_FALSE(pictureOf(journal.reading(), {}).has_value());
  EXPECT_FALSE(pictureOf(journal.note(0, 1, "launchd").reading(), {}).has_value());
}

TEST(PictureOfTest, ARestartHasARowForEachWhoHadAPartInIt) {
  EXPECT_THAT(namesOf(hanging()),
              ElementsAre("companion 100", "its job lock", "its watch", "its log", "launchctl", "Core 50",
                          "helper 51", "new Core 60", "launchd 1"));
}

TEST(PictureOfTest, TheSumOfAKillIsInTheOrderOfItsMoments) {
  EXPECT_EQ(hanging().sum,
            "asked at 0.46 s, alive at 2.46 s, group killed at 2.46 s, gone at 2.47 s, new Core at 2.48 s");
}

TEST(PictureOfTest, TheCompanionsStepsAndWaitsAreThoseOfItsRules) {
  const auto picture = hanging();
  const auto& steps = rowOf(picture, "companion 100");
  EXPECT_THAT(spansOf(steps, SpanKind::Wait), ElementsAre("0-401 intake"));
  EXPECT_THAT(spansOf(steps, SpanKind::Step), ElementsAre("410-461 print", "466-2518 kickstart -k"));
  EXPECT_THAT(spansOf(rowOf(picture, "its job lock"), SpanKind::Lock), ElementsAre("402-2522 job lock"));
  EXPECT_THAT(spansOf(rowOf(picture, "its watch"), SpanKind::Wait),
              ElementsAre("464-2465 grace, 2 s at most", "2465-2517 until gone"));
}

TEST(PictureOfTest, TheNoteAndTheReceiptAreMarkedAndTheEnd) {
  std::vector<std::string> labels;
  for (const auto& mark : hanging().rows.front().marks)
    labels.push_back(mark.label + "@" + std::to_string(mark.at / 1000));
  EXPECT_THAT(labels, ElementsAre("note@2519", "receipt@2521", "@2522"));
}

TEST(PictureOfTest, SignalsGoFromWhoSendsThemToWhomTheyHit) {
  const auto picture = hanging();
  const auto names = namesOf(picture);
  ASSERT_EQ(picture.arrows.size(), 2U) << "launchd's second kill of the helper is none: it was killed before";
  EXPECT_EQ(picture.arrows[0].signal, "SIGTERM");
  EXPECT_EQ(names[picture.arrows[0].from], "launchd 1");
  EXPECT_THAT(picture.arrows[0].to, ElementsAre(5U));
  EXPECT_EQ(picture.arrows[1].signal, "SIGKILL");
  EXPECT_EQ(names[picture.arrows[1].from], "its watch");
  EXPECT_THAT(picture.arrows[1].to, ElementsAre(5U, 6U));
}

TEST(PictureOfTest, WhoLivedBeforeAndWhoLivesOnIsOpenAtThatEnd) {
  const auto picture = hanging();
  EXPECT_TRUE(rowOf(picture, "Core 50").spans[0].began);
  EXPECT_FALSE(rowOf(picture, "Core 50").spans[0].goesOn);
  EXPECT_FALSE(rowOf(picture, "new Core 60").spans[0].began);
  EXPECT_TRUE(rowOf(picture, "new Core 60").spans[0].goesOn);
}

TEST(PictureOfTest, WhoIsGoneWithoutAWordIsLostAndDrawnToItsLastOne) {
  const auto picture = drawn(hangingRestart(), {.living = {1}});
  const auto& core = rowOf(picture, "new Core 60").spans[0];
  EXPECT_TRUE(core.lost);
  EXPECT_EQ(core.until, 2'488'000);
}

TEST(PictureOfTest, LogLinesHaveTheLettersThatTheyAreToldBy) {
  const auto picture = hanging();
  EXPECT_EQ(rowOf(picture, "its log").marks[0].label, "a");
  EXPECT_EQ(rowOf(picture, "its log").marks[1].label, "b");
  EXPECT_THAT(picture.told, Contains(Field(&Told::text, HasSubstr("logs (b): default restart -> status 1"))));
}

TEST(PictureOfTest, WhatHappenedIsToldInOrderAndAStartBeforeWhatIsStarted) {
  const auto told = hanging().told;
  EXPECT_TRUE(std::ranges::is_sorted(told, {}, &Told::at));
  const auto place = [&](std::string_view text) {
    return std::ranges::find_if(told, [&](const Told& one) { return one.text.contains(text); }) -
           told.begin();
  };
  EXPECT_LT(place("launchd 1 sends SIGTERM to Core 50"), place("sees Core 50 alive"));
  EXPECT_LT(place("sees Core 50 alive"),
            place("companion 100 sends SIGKILL to group 50 (Core 50, helper 51)"));
  EXPECT_LT(place("sends SIGKILL"), place("launchd 1 sees Core 50 end by SIGKILL"));
  EXPECT_LT(place("end by SIGKILL"), place("launchd 1 starts new Core 60"));
  EXPECT_LT(place("starts new Core 60"), place("new Core 60 is up"));
  EXPECT_EQ(told.back().text, "companion 100 has done");
}

TEST(PictureOfTest, OnlyTheLastActionIsDrawn) {
  auto journal = hangingRestart();
  journal.note(9000, 200, "companion", {"--core-action", "status"})
      .note(9400, 200, "log", {"default", "status -> 1"});
  journal.note(9401, 200, "terminates");
  const auto picture = drawn(journal, {.living = {1, 60}});
  EXPECT_EQ(picture.title, "status by companion 200, 0.40 s");
  EXPECT_THAT(namesOf(picture), ElementsAre("companion 200", "its log", "Core 60", "launchd 1"));
  EXPECT_EQ(picture.sum, "in the log at 0.40 s, done at 0.40 s");
  EXPECT_EQ(picture.told.front().text, "companion 200 begins with --core-action status");
}

TEST(PictureOfTest, ACoreThatIsSparedIsWaitedFor) {
  JournalBuilder journal;
  journal.note(0, 1, "launchd").note(1, 50, "core", {"50"}).note(1000, 100, "companion");
  journal.note(1500, 100, "watches").note(1501, 100, "looks", {"50", "alive"});
  journal.note(1502, 1, "signals", {"15", "process", "50"}).note(5000, 1, "reaped", {"50", "exited", "0"});
  journal.note(5100, 100, "looks", {"50", "none"}).note(5101, 100, "watched").note(5102, 100, "terminates");
  const auto picture = drawn(journal);
  EXPECT_THAT(spansOf(rowOf(picture, "its watch"), SpanKind::Wait),
              ElementsAre("500-2500 grace, 2 s at most", "2500-4101 spared, 20 s at most"));
  EXPECT_EQ(picture.sum, "asked at 0.50 s, gone by itself at 4.00 s");
}

TEST(PictureOfTest, ACoreThatExitsInTimeIsNeitherKilledNorSpared) {
  JournalBuilder journal;
  journal.note(0, 1, "launchd").note(1, 50, "core", {"50"}).note(1000, 100, "companion");
  journal.note(1500, 100, "watches").note(1501, 1, "signals", {"15", "process", "50"});
  journal.note(2000, 1, "reaped", {"50", "exited", "0"})
      .note(2050, 100, "watched")
      .note(2060, 100, "terminates");
  const auto picture = drawn(journal);
  EXPECT_THAT(spansOf(rowOf(picture, "its watch"), SpanKind::Wait),
              ElementsAre("500-1050 grace, 2 s at most"));
  EXPECT_EQ(picture.sum, "asked at 0.50 s, gone by itself at 1.00 s");
}

TEST(PictureOfTest, WhoHasTheLockMeanwhileHasARowOfItsOwn) {
  JournalBuilder journal;
  journal.note(0, 90, "companion").note(10, 90, "lock", {"gained"}).note(1000, 100, "companion");
  journal.note(1400, 100, "lock", {"busy"}).note(1500, 100, "lock", {"busy"}).note(1600, 90, "unlocks");
  journal.note(1601, 90, "terminates").note(1650, 100, "lock", {"gained"}).note(1700, 100, "terminates");
  const auto picture = drawn(journal);
  const auto& other = rowOf(picture, "companion 90");
  EXPECT_THAT(spansOf(other, SpanKind::Lock), ElementsAre("0-600 job lock"));
  EXPECT_TRUE(other.spans[0].began);
  const auto& own = rowOf(picture, "its job lock");
  EXPECT_THAT(spansOf(own, SpanKind::Wait), ElementsAre("400-650 waits for the lock"));
  EXPECT_THAT(spansOf(own, SpanKind::Lock), ElementsAre("650-700 job lock"));
}

TEST(PictureOfTest, ACompanionThatRunsIsDrawnUntilNow) {
  JournalBuilder journal;
  journal.note(0, 100, "companion", {"--core-action", "sync"}).note(1, 100, "waits", {"400000"});
  const auto picture = drawn(journal, {.now = JournalBuilder::hour + 300'000, .living = {100}});
  EXPECT_EQ(picture.title, "sync by companion 100, 0.30 s");
  EXPECT_THAT(spansOf(picture.rows[0], SpanKind::Wait), ElementsAre("0-300 intake"));
  EXPECT_THAT(picture.remarks, ElementsAre("The companion still runs."));
  EXPECT_EQ(picture.sum, "nothing has come of it by 0.30 s");
}

TEST(PictureOfTest, ACompanionThatWasKilledIsDrawnToItsLastMoment) {
  JournalBuilder journal;
  journal.note(0, 100, "companion").note(1, 100, "waits", {"400000"}).note(200, 1, "launchd");
  const auto picture = drawn(journal, {.now = JournalBuilder::hour + 900'000});
  EXPECT_TRUE(picture.rows[0].spans.back().lost);
  EXPECT_EQ(picture.rows[0].spans.back().until, 1000);
  EXPECT_THAT(picture.remarks, ElementsAre("The companion has ended without a word; nobody noted when."));
}

TEST(PictureOfTest, AToolThatIsGivenUpWasWaitedForByARule) {
  JournalBuilder journal;
  journal.note(0, 100, "companion").note(400, 100, "starts", {"101", "/bin/launchctl", "print", "x"});
  journal.note(5400, 100, "signals", {"15", "process", "101"}).note(5500, 100, "terminates");
  const auto picture = drawn(journal, {.living = {101}});
  EXPECT_THAT(spansOf(picture.rows[0], SpanKind::Step), IsEmpty());
  EXPECT_THAT(spansOf(picture.rows[0], SpanKind::Wait), ElementsAre("400-5400 print, given up"));
  ASSERT_EQ(picture.arrows.size(), 1U);
  EXPECT_EQ(namesOf(picture)[picture.arrows[0].to[0]], "launchctl");
  EXPECT_TRUE(rowOf(picture, "launchctl").spans[0].goesOn);
}

TEST(PictureOfTest, WhoEndsWithoutAWordBySignalIsDrawnToThat) {
  JournalBuilder journal;
  journal.note(0, 100, "companion").note(400, 100, "starts", {"101", "/bin/launchctl", "print", "x"});
  journal.note(5400, 100, "signals", {"15", "process", "101"}).note(5500, 100, "terminates");
  const auto picture = drawn(journal);
  EXPECT_EQ(picture.arrows.size(), 1U);
  EXPECT_TRUE(rowOf(picture, "launchctl").spans[0].lost);
  EXPECT_EQ(rowOf(picture, "launchctl").spans[0].until, 5'400'000);
}

TEST(PictureOfTest, ToolsThatRunAtOnceHaveARowEach) {
  JournalBuilder journal;
  journal.note(0, 100, "companion").note(10, 101, "tool", {"launchctl", "print"});
  journal.note(20, 102, "tool", {"launchctl", "print"})
      .note(30, 101, "leaves", {"0"})
      .note(40, 102, "leaves", {"5"});
  journal.note(50, 103, "tool", {"launchctl", "print"}).note(60, 103, "leaves", {"0"});
  const auto names = namesOf(drawn(journal));
  EXPECT_EQ(std::ranges::count(names, "launchctl"), 2);
}

TEST(PictureOfTest, AMovesSumHasItsSteps) {
  JournalBuilder journal;
  journal.note(0, 70, "app", {"/a/Tamo"})
      .note(1000, 100, "companion", {"--core-action", "move-to-applications"});
  journal.note(1001, 100, "waits", {"400000"}).note(1399, 100, "goes-on");
  journal.note(1400, 100, "starts", {"101", "/usr/bin/osascript", "-e"})
      .note(1410, 101, "prompt", {"Tamo wants"});
  journal.note(2000, 101, "answer", {"agree"})
      .note(2100, 101, "leaves", {"0"})
      .note(2110, 100, "tool-ended", {"101", "0"});
  journal.note(2200, 100, "trashes", {"/a"}).note(2300, 100, "writes", {"/b/move-to-applications.json"});
  journal.note(2301, 100, "waits", {"250000"})
      .note(2551, 100, "goes-on")
      .note(2552, 100, "waits", {"250000"});
  journal.note(2600, 70, "told", {"15", "4"}).note(2601, 70, "leaves", {"0"}).note(2802, 100, "goes-on");
  journal.note(2803, 100, "opens", {"/b"})
      .note(2900, 71, "app", {"/b/Tamo"})
      .note(2901, 100, "opened", {"yes"});
  journal.note(2902, 100, "terminates");
  const auto picture = drawn(journal, {.living = {71}});
  EXPECT_EQ(
      picture.sum,
      "password asked for at 0.41 s, answered at 1.00 s, old copy in the Trash at 1.20 s, result at 1.30 s, "
      "old copy gone at 1.60 s, new copy runs at 1.90 s");
  EXPECT_THAT(spansOf(picture.rows[0], SpanKind::Wait),
              ElementsAre("0-399 intake", "1301-1802 until Tamo quits"));
  EXPECT_THAT(spansOf(rowOf(picture, "osascript"), SpanKind::Step), ElementsAre("410-1000 prompt"));
  EXPECT_THAT(picture.arrows, IsEmpty());
}

TEST(PictureOfTest, WhatIsWrongWithTheJournalIsRemarkedOn) {
  const auto reading = readJournal("noise\n" + hangingRestart().bytes() + "5\t1\tlaunchd\n12\t");
  const auto picture = pictureOf(reading, {.living = {1, 60}});
  ASSERT_TRUE(picture.has_value());
  EXPECT_THAT(
      picture->remarks,
      ElementsAre(
          "1 line of the journal is none that a stage writes, and left out.",
          "The journal is cut off in the middle of its last line.",
          "The clock went back 1 time; what came after is drawn as if it had stood still meanwhile."));
}

TEST(PictureTest, SecondsAreRoundedDown) {
  EXPECT_EQ(secondsText(0), "0.00 s");
  EXPECT_EQ(secondsText(2'469'999), "2.46 s");
  EXPECT_EQ(secondsText(2'069'999, 3), "2.069 s");
  EXPECT_EQ(secondsText(61'000'000), "61.00 s");
}

}  // namespace
}  // namespace tamo::stage

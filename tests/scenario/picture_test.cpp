#include <algorithm>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>

#include "platform/posix/posix_files.hpp"
#include "stage.hpp"
#include "stage/common/stage_census.hpp"
#include "stage/picture/picture_of.hpp"
#include "stage/picture/picture_svg.hpp"
#include "unit/stage/svg_form.hpp"

/// What the picture of an action that was really carried out says.
namespace tamo::scenario {
namespace {

using stage::Picture;
using stage::Row;
using stage::RowKind;
using ::testing::MatchesRegex;

Picture pictureOf(const Stage& stage) {
  stage::Present present;
  for (const auto& process : stage::processesOfStage(stage.root().directory()))
    present.living.insert(process.pid);
  const auto bytes = platform::posix::readWhole(stage.root().control("journal"));
  const auto reading = stage::readJournal(bytes.value_or(""));
  EXPECT_EQ(reading.unreadable, 0U);
  return stage::pictureOf(reading, present).value_or(Picture());
}

std::string number(pid_t pid) {
  return std::to_string(pid);
}

/// Whether the journal has the words of the new Core, which comes up beside the companion.
bool isUp(const Stage& stage, pid_t core) {
  return eventually([&] {
    const auto bytes = platform::posix::readWhole(stage.root().control("journal")).value_or("");
    return bytes.contains("\t" + number(core) + "\tsays\tis up\n");
  });
}

std::vector<std::string> rowNames(const Picture& picture) {
  std::vector<std::string> names;
  for (const auto& row : picture.rows)
    names.push_back(row.name);
  return names;
}

std::ptrdiff_t placeOf(const Picture& picture, const std::string& text) {
  const auto found = std::ranges::find_if(picture.told, [&](const auto& told) { return told.text == text; });
  EXPECT_NE(found, picture.told.end()) << text;
  return found - picture.told.begin();
}

/// The times of the sum, which is to have these words before them.
std::vector<double> timesOf(const std::string& sum) {
  std::vector<double> times;
  static const std::regex time("([0-9]+\\.[0-9]+) s");
  for (auto it = std::sregex_iterator(sum.begin(), sum.end(), time); it != std::sregex_iterator(); ++it)
    times.push_back(std::stod((*it)[1]));
  return times;
}

TEST(PictureScenario, TheRestartOfAHangingCoreIsDrawnAsItWas) {
  const Stage stage({.core = "term=ignore children=1", .companion = stage::Companion::Receipts});
  static_cast<void>(stage.corePid());
  stage.set("core", "term=obey");
  const auto companion = stage.act("restart");
  const auto picture = pictureOf(stage);
  EXPECT_THAT(picture.title, ::testing::StartsWith("restart by companion " + number(companion.pid)));
  EXPECT_THAT(picture.sum,
              MatchesRegex("asked at [0-9.]+ s, alive at [0-9.]+ s, group killed at [0-9.]+ s, gone at "
                           "[0-9.]+ s, new Core at [0-9.]+ s"));
  const auto times = timesOf(picture.sum);
  ASSERT_EQ(times.size(), 5U);
  EXPECT_TRUE(std::ranges::is_sorted(times));
  EXPECT_GE(times[0], 0.4) << "not before the intake is over";
  EXPECT_GE(times[2] - times[0], 1.5);
  EXPECT_LE(times[2], 10);
}

TEST(PictureScenario, TheRestartOfAHangingCoreShowsWhoSignalsWhom) {
  const Stage stage({.core = "term=ignore children=1"});
  const auto before = stage.corePid();
  stage.set("core", "term=obey");
  const auto companion = stage.act("restart");
  const auto picture = pictureOf(stage);
  const auto names = rowNames(picture);
  ASSERT_EQ(picture.arrows.size(), 2U);
  EXPECT_EQ(picture.arrows[0].signal, "SIGTERM");
  EXPECT_EQ(picture.rows[picture.arrows[0].from].kind, RowKind::Launchd);
  ASSERT_EQ(picture.arrows[0].to.size(), 1U);
  EXPECT_EQ(names[picture.arrows[0].to[0]], "Core " + number(before));
  EXPECT_EQ(picture.arrows[1].signal, "SIGKILL");
  EXPECT_EQ(picture.rows[picture.arrows[1].from].kind, RowKind::Watch);
  ASSERT_EQ(picture.arrows[1].to.size(), 2U);
  EXPECT_EQ(names[picture.arrows[1].to[0]], "Core " + number(before));
  EXPECT_EQ(picture.rows[picture.arrows[1].to[1]].kind, RowKind::Helper);
  const auto begins =
      placeOf(picture, "companion " + number(companion.pid) + " begins with --core-action restart");
  const auto ignores = placeOf(picture, "Core " + number(before) + " ignores SIGTERM");
  const auto done = placeOf(picture, "companion " + number(companion.pid) + " has done");
  EXPECT_LT(begins, ignores);
  EXPECT_LT(ignores, done);
}

/// As ./rehearse --picture draws it; only the times and the pids are others.
TEST(PictureScenario, ARehearsalDrawnTodayHasTheFormOfThePictureInTheTree) {
  const Stage stage({.core = "term=ignore children=1", .companion = stage::Companion::Receipts});
  static_cast<void>(stage.corePid());
  stage.set("core", "term=obey");
  stage.act("restart");
  ASSERT_TRUE(isUp(stage, stage.corePid()));
  std::ostringstream tree;
  tree << std::ifstream(TAMO_SOURCE_DIR "/docs/pictures/restart.svg", std::ios::binary).rdbuf();
  auto picture = pictureOf(stage);
  // The question for the new Core's pid came from here and is in no rehearsal.
  const auto end = std::ranges::find(picture.rows, RowKind::Steps, &Row::kind)->spans.back().until;
  for (auto& row : picture.rows) {
    std::erase_if(row.spans, [end](const auto& span) { return span.from > end; });
    std::erase_if(row.marks, [&](const auto& mark) { return mark.at > end && row.kind != RowKind::Core; });
  }
  const auto svg = stage::svgOf(picture);
  EXPECT_EQ(stage::wrongInXml(svg), "");
  EXPECT_EQ(stage::formOf(svg), stage::formOf(tree.str()));
}

TEST(PictureScenario, ACompanionThatWaitsForTheLockIsDrawnBesideTheOneThatHasIt) {
  const Stage stage({.core = "term=late:1500"});
  static_cast<void>(stage.corePid());
  const auto first = stage.start({"--core-action", "restart"});
  EXPECT_TRUE(eventually([&] {
    const auto bytes = platform::posix::readWhole(stage.root().control("journal")).value_or("");
    return bytes.contains("\t" + number(first.pid) + "\tlock\tgained\n");
  }));
  const auto second = stage.act("sync");
  Stage::finish(first);
  const auto picture = pictureOf(stage);
  EXPECT_THAT(rowNames(picture), ::testing::Contains("companion " + number(first.pid)));
  const auto lock = std::ranges::find(picture.rows, RowKind::Lock, &Row::kind);
  ASSERT_NE(lock, picture.rows.end());
  EXPECT_EQ(lock->spans.front().label, "waits for the lock");
  EXPECT_EQ(lock->spans.back().label, "job lock");
  EXPECT_THAT(picture.title, ::testing::StartsWith("sync by companion " + number(second.pid)));
}

TEST(PictureScenario, AToolThatHangsIsGivenUpAndIsSentASignal) {
  const Stage stage;
  static_cast<void>(stage.corePid());
  stage.set("tool-launchctl", "print hang");
  stage.act("sync");
  const auto picture = pictureOf(stage);
  const auto names = rowNames(picture);
  ASSERT_EQ(picture.arrows.size(), 1U);
  EXPECT_EQ(picture.arrows[0].signal, "SIGTERM");
  EXPECT_EQ(picture.rows[picture.arrows[0].from].kind, RowKind::Steps);
  EXPECT_EQ(names[picture.arrows[0].to.at(0)], "launchctl");
}

}  // namespace
}  // namespace tamo::scenario

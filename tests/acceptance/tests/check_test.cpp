#include "acceptance/check.hpp"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "acceptance/checks/sequences.hpp"
#include "acceptance/command_line.hpp"
#include "acceptance/line_text.hpp"
#include "acceptance/set.hpp"

namespace tamo::acceptance {
namespace {

std::vector<std::string> names() {
  std::vector<std::string> found;
  for (const auto& theme : allThemes())
    for (const auto& check : theme.checks)
      found.emplace_back(check.name);
  return found;
}

TEST(ChecksTest, EachHasANameOfItsOwnASentenceAndACourse) {
  std::set<std::string> seen;
  for (const auto& theme : allThemes()) {
    for (const auto& check : theme.checks) {
      EXPECT_TRUE(seen.emplace(check.name).second) << check.name;
      EXPECT_TRUE(check.sees.ends_with(".")) << check.name;
      EXPECT_NE(check.play, nullptr) << check.name;
    }
  }
  EXPECT_GT(seen.size(), 70U);
}

bool isPlayedBefore(std::string_view first, std::string_view second) {
  const auto all = names();
  const auto later = std::ranges::find(all, second);
  return later != all.end() && std::find(all.begin(), later, first) != later;
}

TEST(ChecksTest, APromptIsClosedBeforeAnAdministratorInstallsWhatTheUserCannotTakeAway) {
  EXPECT_TRUE(isPlayedBefore("move-cancelled", "move-administrator"));
}

TEST(ChecksTest, LastWordsAreKnownToBeSeenBeforeTheirAbsenceCounts) {
  EXPECT_TRUE(isPlayedBefore("last-words", "nothing-ended-by-itself"));
}

TEST(ChecksTest, ThePageExplainsEachCheck) {
  std::ostringstream page;
  page << std::ifstream(TAMO_SOURCE_DIR "/docs/first-time-on-a-mac.md").rdbuf();
  for (const auto& name : names())
    EXPECT_TRUE(page.str().contains("`" + name + "`")) << name;
}

TEST(ChosenTest, NoNameMeansAll) {
  EXPECT_EQ(chosen({}).checks.size(), names().size());
}

TEST(ChosenTest, AThemeAndACheckAreNamedAlike) {
  const auto choice = chosen({"lock", "register"});
  ASSERT_EQ(choice.checks.size(), 4U);
  EXPECT_EQ(choice.checks.front().check->name, "register");
  EXPECT_EQ(choice.checks.back().theme, "lock");
  EXPECT_EQ(choice.unknown, "");
}

TEST(ChosenTest, ANameThatNobodyHasIsTold) {
  EXPECT_EQ(chosen({"register", "registre"}).unknown, "registre");
}

TEST(SequencesTest, TheStateFollowsFromTheOrder) {
  EXPECT_EQ(expectedOutcome("register", false), "register -> status 1 ok Optional(true)");
  EXPECT_EQ(expectedOutcome("register", true), "register -> status 1 ok Optional(true) kickstart 0");
  EXPECT_EQ(expectedOutcome("unregister", true), "unregister -> status 0 ok Optional(true)");
  EXPECT_EQ(expectedOutcome("status", true), "status -> status 1 ok Optional(true)");
  EXPECT_TRUE(registeredAfter("register", false));
  EXPECT_FALSE(registeredAfter("unregister", true));
  EXPECT_TRUE(registeredAfter("status", true));
}

TEST(OrdersTest, EveryWordIsRead) {
  const auto orders =
      ordersOf({"--report", "folder", "--with-me", "--at-once", "3", "--repetitions", "7", "lock", "moves"});
  ASSERT_TRUE(orders.has_value());
  EXPECT_EQ(orders->report, "folder");
  EXPECT_TRUE(orders->withMe);
  EXPECT_EQ(orders->atOnce, 3U);
  EXPECT_EQ(orders->terms.repetitions, 7);
  EXPECT_EQ(orders->names, (std::vector<std::string>{"lock", "moves"}));
}

TEST(OrdersTest, AWrongUseIsNamed) {
  for (const auto& words : {std::vector<std::string>{"--with-you"},
                            {"--report"},
                            {"--at-once", "0"},
                            {"--at-once", "x"},
                            {"--repetitions", "-1"}}) {
    const auto orders = ordersOf(words);
    ASSERT_FALSE(orders.has_value()) << words.front();
    EXPECT_EQ(orders.error(), "\"" + words.front() + "\" is no use of this command");
  }
}

TEST(OrdersTest, TheListHasALineForEach) {
  const auto list = listOfChecks();
  EXPECT_EQ(static_cast<std::size_t>(std::ranges::count(list, '\n')), names().size());
}

int playedBy(std::vector<std::string> words) {
  std::vector<char*> pointers;
  words.insert(words.begin(), "accept");
  for (auto& word : words)
    pointers.push_back(word.data());
  return playWords(static_cast<int>(pointers.size()), pointers.data(), [](const Orders&) { return 7; });
}

TEST(PlayWordsTest, TheListAndAWrongUsePlayNothing) {
  ::testing::internal::CaptureStdout();
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(playedBy({"lock", "--list"}), 0);
  EXPECT_EQ(playedBy({"--help"}), 2);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), listOfChecks());
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "accept: \"--help\" is no use of this command\n");
  EXPECT_EQ(playedBy({"lock"}), 7);
}

TEST(LineTextTest, ALineIsOneLine) {
  EXPECT_EQ(
      lineText(
          {{.time = 1'500'000, .pid = 7, .level = Level::Error, .text = "a\nb", .marks = {Mark::Private}}}),
      "00:00:01.500 pid 7 error a\\nb   [private]\n");
}

}  // namespace
}  // namespace tamo::acceptance

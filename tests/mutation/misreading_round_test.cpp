#include "mutation/misreading_round.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>

namespace tamo::mutation {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

Misreading entryOf(const std::string& table, const std::string& name, const std::string& file = "a") {
  return {.name = name,
          .rule = "The rule of " + name + ".",
          .programs = {"contract"},
          .table = table,
          .line = 1,
          .replacements = {{.file = file, .before = "a\n", .after = "b\n"}}};
}

std::vector<Misreading> three() {
  return {entryOf("app", "first"), entryOf("app", "second"), entryOf("move", "third")};
}

/// The row of a table, its blanks made one.
std::vector<std::string> rowOf(const std::string& report, const std::string& name) {
  std::istringstream in(report);
  for (std::string line; std::getline(in, line);) {
    if (!line.starts_with(name + " ")) continue;
    std::istringstream words(line);
    return {std::istream_iterator<std::string>(words), {}};
  }
  return {};
}

TEST(MisreadingRoundTest, EntriesOfOneFileStandTogether) {
  std::vector<Misreading> entries{entryOf("move", "a", "move/b.cpp"), entryOf("app", "b", "app/z.cpp"),
                                  entryOf("move", "c", "move/a.cpp"), entryOf("move", "d", "move/b.cpp")};
  sortForBuilding(entries);
  std::vector<std::string> names;
  for (const auto& entry : entries)
    names.push_back(entry.name);
  EXPECT_THAT(names, ElementsAre("b", "c", "a", "d"));
}

TEST(MisreadingRoundTest, AFindingNamesWhatCaughtIt) {
  const auto findings =
      findingsIn("first\ttest\tunit_app\tA.b/0\nsecond\ttime\tcontract\t\nthird\tdunno\tcontract\t\n");
  EXPECT_EQ(findings.size(), 2U);
  EXPECT_EQ(findings.at("first").outcome, Outcome::caughtByTest);
  EXPECT_EQ(findings.at("first").program, "unit_app");
  EXPECT_EQ(findings.at("first").test, "A.b/0");
  EXPECT_EQ(findings.at("second").outcome, Outcome::caughtByTime);
}

TEST(MisreadingRoundTest, WhatCaughtThemIsCountedTableByTable) {
  const auto made = reportOn(
      three(),
      findingsIn("first\ttest\tunit_app\tA.b\nsecond\tcrash\tsimulate\t\nthird\ttime\tscenario\t\n"));
  EXPECT_EQ(made.notCaught, 0U);
  EXPECT_THAT(rowOf(made.text, "app"), ElementsAre("app", "2", "1", "0", "0", "0", "1", "0", "0", "0"));
  EXPECT_THAT(rowOf(made.text, "move"), ElementsAre("move", "1", "0", "0", "1", "0", "0", "0", "0", "0"));
  EXPECT_THAT(rowOf(made.text, "all"), ElementsAre("all", "3", "1", "0", "1", "0", "1", "0", "0", "0"));
  EXPECT_THAT(made.text, HasSubstr("1 caught by a test\n1 caught by hanging\n1 caught by a crash\n"));
}

TEST(MisreadingRoundTest, WhatIsNotCaughtIsTheReportsFailureAndTellsItsRule) {
  for (const auto& [outcome, told] : std::map<std::string, std::string>{
           {"survived", "survived"}, {"build", "does not build"}, {"gone", "its place is gone"}}) {
    const auto made = reportOn(three(), findingsIn("first\ttest\tunit_app\tA.b\nthird\ttest\tfaults\tA.b\n" +
                                                   ("second\t" + outcome) + "\tunit_app\t\n"));
    EXPECT_EQ(made.notCaught, 1U);
    EXPECT_THAT(made.text, HasSubstr("app: second " + told + "\n    The rule of second.\n"));
    EXPECT_THAT(made.text, Not(HasSubstr("The rule of first.")));
    EXPECT_THAT(rowOf(made.text, "app"), ElementsAre("app", "2", "1", "0", "0", "0", "0", "0", "0", "1"));
  }
}

TEST(MisreadingRoundTest, WhatWasNotRunIsNotCaught) {
  const auto made = reportOn(three(), {});
  EXPECT_EQ(made.notCaught, 3U);
  EXPECT_THAT(made.text, HasSubstr("app: first was not run"));
}

}  // namespace
}  // namespace tamo::mutation

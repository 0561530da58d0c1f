#include "mutation/report.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tamo::mutation {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

Planned mutantIn(std::size_t id, const std::string& file) {
  return {.id = id,
          .file = file,
          .line = 7,
          .lineText = "if (a < b)",
          .before = "<",
          .after = "<=",
          .mutant = {.rule = "comparison", .edits = {}}};
}

std::vector<Planned> two() {
  return {mutantIn(1, "guard/a.cpp"), mutantIn(2, "move/b.cpp")};
}

const Explained known{.file = "guard/a.cpp",
                      .lineText = "if (a < b)",
                      .change = "comparison: < -> <=",
                      .reason = "they never meet"};

TEST(ExplainedTest, AnEntryHasFourLines) {
  const auto entries = explainedIn("# for the reader\n\nf.cpp\nline\nchange\nbecause\nof this\n\n\ng.cpp\n");
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries[0].file, "f.cpp");
  EXPECT_EQ(entries[0].lineText, "line");
  EXPECT_EQ(entries[0].change, "change");
  EXPECT_EQ(entries[0].reason, "because of this");
  EXPECT_EQ(entries[1].reason, "");
}

TEST(ReportTest, ASurvivorIsNamedWithItsPlaceAndItsChange) {
  const auto made = report(two(), {{1, Verdict::survived}, {2, Verdict::caughtByTest}}, {}, false);
  EXPECT_EQ(made.open, 1U);
  EXPECT_THAT(made.text, HasSubstr("guard/a.cpp:7: comparison: < -> <=\n    if (a < b)"));
  EXPECT_THAT(made.text, Not(HasSubstr("move/b.cpp:7")));
}

TEST(ReportTest, AnExplainedSurvivorIsShownAndNotCounted) {
  const auto made = report(two(), {{1, Verdict::survived}, {2, Verdict::caughtByTest}}, {known}, false);
  EXPECT_EQ(made.open, 0U);
  EXPECT_THAT(made.text, HasSubstr("they never meet"));
  EXPECT_THAT(made.text, HasSubstr("100.0 %"));
}

TEST(ReportTest, AnExplanationWithoutAReasonExplainsNothing) {
  auto empty = known;
  empty.reason.clear();
  EXPECT_GE(report(two(), {{1, Verdict::survived}}, {empty}, false).open, 1U);
}

TEST(ReportTest, AnExplanationThatNoSurvivorNeedsIsTold) {
  const auto made = report(two(), {{1, Verdict::caughtByTime}}, {known}, false);
  EXPECT_EQ(made.open, 1U);
  EXPECT_THAT(made.text, HasSubstr("No survivor needs this explanation: guard/a.cpp"));
}

TEST(ReportTest, ASampleOrOtherFilesSayNothingAboutAnExplanation) {
  EXPECT_EQ(report(two(), {}, {known}, true).open, 0U);
  EXPECT_EQ(report({mutantIn(2, "move/b.cpp")}, {}, {known}, false).open, 0U);
}

TEST(ReportTest, TheShareLeavesOutWhatWasNotBuiltOrNotRun) {
  const std::vector<Planned> plan{mutantIn(1, "move/b.cpp"), mutantIn(2, "move/b.cpp"),
                                  mutantIn(3, "move/b.cpp"), mutantIn(4, "move/b.cpp")};
  const auto made = report(
      plan, {{1, Verdict::notCompiling}, {2, Verdict::survived}, {3, Verdict::caughtByCrash}}, {}, false);
  EXPECT_THAT(made.text, HasSubstr("50.0 %"));
  EXPECT_THAT(made.text, HasSubstr("1 were not run"));
}

}  // namespace
}  // namespace tamo::mutation

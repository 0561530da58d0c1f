#include "acceptance/report.hpp"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <unistd.h>

#include "acceptance/summary.hpp"

namespace tamo::acceptance {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

Report sampleReport() {
  Played held{.check = checkNamed("register"), .theme = "actions", .outcome = Outcome::Held};
  held.findings.that(true, "the Core runs");
  held.findings.fact("who | asked", "anna\nand \"me\"");
  Played failed{.check = checkNamed("restart"), .theme = "actions", .outcome = Outcome::Failed};
  failed.findings.equal("the lines are these", "a\n", "b of anna\n");
  failed.findings.keep("lines.txt", "a line of anna\n");
  failed.findings.keep("lines.txt", "another\n");
  Played absent{.check = checkNamed("signature"),
                .theme = "system",
                .outcome = Outcome::NotPlayed,
                .reason = "nothing is signed"};
  return {.place = {.kind = "stage", .system = "Linux", .processor = "x86_64", .signature = "none"},
          .begun = "2026-11-21T00:00:00Z",
          .took = std::chrono::milliseconds(1234),
          .checks = {held, failed, absent}};
}

std::string contents(const std::filesystem::path& path) {
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

class WrittenReportTest : public ::testing::Test {
 protected:
  WrittenReportTest() {
    const std::vector<Secret> secrets{{"anna", "(user)"}};
    const auto report = sampleReport();
    for (const auto& played : report.checks)
      EXPECT_TRUE(writeKept(played, folder.string(), secrets));
    EXPECT_TRUE(writeTexts(report, folder.string(), secrets));
  }
  ~WrittenReportTest() override { std::filesystem::remove_all(folder); }
  const std::filesystem::path folder =
      std::filesystem::path(::testing::TempDir()) / ("report-" + std::to_string(::getpid()));
};

TEST(ReportTest, TheCountsAreOfTheOutcomes) {
  const auto counts = countsOf(sampleReport().checks);
  EXPECT_EQ(counts.held, 1U);
  EXPECT_EQ(counts.failed, 1U);
  EXPECT_EQ(counts.notPlayed, 1U);
}

TEST(ReportTest, PeopleReadWhatDidNotHoldFirst) {
  const auto text = markdownOf(sampleReport());
  EXPECT_THAT(text, HasSubstr("| took | 1.2 s |"));
  EXPECT_THAT(text, HasSubstr("### restart\n"));
  EXPECT_THAT(
      text,
      HasSubstr("Not so: the lines are these\n\nexpected\n\n```\na\n```\nseen\n\n```\nb of anna\n```\n"));
  EXPECT_THAT(text, HasSubstr("| not played here: nothing is signed |"));
  EXPECT_THAT(text, HasSubstr("| who \\| asked | anna; and \"me\" |"));
  EXPECT_LT(text.find("### restart"), text.find("## Every check"));
}

TEST(ReportTest, ProgramsReadTheSame) {
  const auto json = nlohmann::json::parse(jsonOf(sampleReport()));
  EXPECT_EQ(json["held"], 1);
  EXPECT_EQ(json["checks"].size(), 3U);
  EXPECT_EQ(json["checks"][1]["outcome"], "failed");
  EXPECT_EQ(json["checks"][1]["judgements"][0]["seen"], "b of anna\n");
  EXPECT_EQ(json["checks"][1]["files"][1], "restart/lines.txt 2");
  EXPECT_EQ(json["checks"][2]["reason"], "nothing is signed");
}

TEST_F(WrittenReportTest, NoFileNamesWhoMustNotBeNamed) {
  int files = 0;
  for (const auto& item : std::filesystem::recursive_directory_iterator(folder)) {
    if (!item.is_regular_file()) continue;
    ++files;
    EXPECT_THAT(contents(item.path()), Not(HasSubstr("anna"))) << item.path();
  }
  EXPECT_EQ(files, 4);
  EXPECT_EQ(contents(folder / "restart/lines.txt"), "a line of (user)\n");
}

TEST_F(WrittenReportTest, WhatAnEarlierOneKeptGoesAndNothingElse) {
  std::ofstream(folder / "mine.txt") << "mine";
  clearReport(folder.string());
  EXPECT_FALSE(std::filesystem::exists(folder / "restart"));
  EXPECT_TRUE(std::filesystem::exists(folder / "mine.txt"));
}

TEST(ReportTest, AFolderWithoutAReportLosesNothing) {
  const auto folder =
      std::filesystem::path(::testing::TempDir()) / ("no-report-" + std::to_string(::getpid()));
  std::filesystem::create_directories(folder / "status");
  clearReport(folder.string());
  EXPECT_TRUE(std::filesystem::exists(folder / "status"));
  std::filesystem::remove_all(folder);
}

/// Who is called as a word of the report, or has a letter in his name that JSON writes otherwise.
TEST(ReportTest, WhatIsTakenOutLeavesTheReportWhole) {
  const auto folder = std::filesystem::path(::testing::TempDir()) / ("names-" + std::to_string(::getpid()));
  auto report = sampleReport();
  report.checks.at(1).findings.equal("who is here", "", R"(Jo "true" at /home/true)");
  report.checks.at(2).reason = "true may not";
  const std::vector<Secret> secrets{{R"(Jo "true")", "(name)"}, {"/home/true", "~"}, {"true", "(user)"}};
  ASSERT_TRUE(writeTexts(report, folder.string(), secrets));
  const auto json = nlohmann::json::parse(contents(folder / "report.json"));
  EXPECT_EQ(json["checks"][0]["judgements"][0]["holds"], true);
  EXPECT_EQ(json["checks"][1]["judgements"][1]["seen"], "(name) at ~");
  EXPECT_EQ(json["checks"][2]["reason"], "(user) may not");
  EXPECT_THAT(contents(folder / "report.md"), HasSubstr("(name) at ~"));
  std::filesystem::remove_all(folder);
}

TEST(ReportTest, AFolderThatCannotBeMadeIsTold) {
  EXPECT_FALSE(writeTexts(sampleReport(), "/proc/nowhere", {}));
}

TEST(SummaryTest, EachThemeHasARow) {
  EXPECT_EQ(themeRows(sampleReport().checks),
            "  actions     1 held, 1 FAILED                  0.0 s\n"
            "  system      1 not played here                 0.0 s\n");
}

TEST(SummaryTest, WhatFailsIsToldAtOnceAndTheReportAtTheEnd) {
  std::ostringstream out;
  Summary summary(out, 3, false);
  const auto report = sampleReport();
  for (const auto& played : report.checks)
    summary.ends(played);
  summary.closes(report, "folder");
  EXPECT_THAT(out.str(), HasSubstr("FAILED restart (0.0 s): not so: the lines are these\n"));
  EXPECT_THAT(out.str(),
              HasSubstr("1 held, 1 FAILED, 1 not played here in 1.2 s; the report: folder/report.md\n"));
}

}  // namespace
}  // namespace tamo::acceptance

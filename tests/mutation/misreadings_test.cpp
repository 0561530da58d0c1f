#include "mutation/misreadings.hpp"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "mutation/misreading_round.hpp"

namespace tamo::mutation {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

const std::string entryHead = "misreading: an-entry\nbreaks: A rule.\ntests: unit_app\n";
const std::string block = "in: app/a.cpp\n<<<<\n  a();\n====\n  b();\n>>>>\n";

TEST(MisreadingsTest, AnEntrySaysWhatBecomesWhatAndWhichTestsAreAsked) {
  const auto read = readTable(
      "app", "# for the reader\n\nmisreading: its-name\nbreaks: A rule.\ntests: unit_app scenario:Stage.*\n" +
                 block);
  EXPECT_THAT(read.faults, IsEmpty());
  ASSERT_EQ(read.entries.size(), 1U);
  const auto& entry = read.entries.front();
  EXPECT_EQ(entry.name, "its-name");
  EXPECT_EQ(entry.rule, "A rule.");
  EXPECT_EQ(entry.table, "app");
  EXPECT_EQ(entry.line, 3U);
  EXPECT_THAT(entry.programs, ElementsAre("unit_app", "scenario:Stage.*"));
  ASSERT_EQ(entry.replacements.size(), 1U);
  EXPECT_EQ(entry.replacements.front().file, "app/a.cpp");
  EXPECT_EQ(entry.replacements.front().before, "  a();\n");
  EXPECT_EQ(entry.replacements.front().after, "  b();\n");
}

TEST(MisreadingsTest, AFileHoldsForTheBlocksBehindItAndNotForTheNextEntry) {
  const std::string more = "<<<<\nc();\n====\n>>>>\nin: app/b.cpp\n<<<<\n\n# d\n====\nd();\n>>>>\n";
  const auto read =
      readTable("app", entryHead + block + more + "\nmisreading: x\nbreaks: B.\ntests: contract\n" +
                           "<<<<\na\n====\nb\n>>>>\n");
  ASSERT_EQ(read.entries.size(), 2U);
  const auto& made = read.entries.front().replacements;
  ASSERT_EQ(made.size(), 3U);
  EXPECT_EQ(made[1].file, "app/a.cpp");
  EXPECT_EQ(made[1].after, "");
  EXPECT_EQ(made[2].file, "app/b.cpp");
  EXPECT_EQ(made[2].before, "\n# d\n");
  EXPECT_THAT(read.faults, ElementsAre("app.txt:25: a block belongs to no file"));
}

struct Wrong {
  std::string text;
  const char* fault;
};

TEST(MisreadingsTest, AFormThatIsNotKeptIsAFault) {
  const std::vector<Wrong> table{
      {"breaks: A rule.\n", "app.txt:1: no entry has begun: breaks: A rule."},
      {"in: app/a.cpp\n", "app.txt:1: no entry has begun: in: app/a.cpp"},
      {entryHead + block + "where: there\n", "app.txt:10: unknown: where: there"},
      {entryHead + block + "tests:unit_app\n", "app.txt:10: unknown: tests:unit_app"},
      {entryHead + block + "breaks: Twice.\n", "app.txt:10: told twice"},
      {entryHead + block + "tests: contract\n", "app.txt:10: told twice"},
      {"misreading: An entry\nbreaks: A.\ntests: contract\n" + block, "no name in kebab case: An entry"},
      {"misreading: a\ntests: contract\n" + block, "app.txt:1: a has no \"breaks:\""},
      {"misreading: a\nbreaks: A.\n" + block, "app.txt:1: a has no \"tests:\""},
      {entryHead, "app.txt:1: an-entry has no block"},
      {entryHead + "\n" + entryHead + block, "app.txt:1: an-entry has no block"},
      {"misreading: a\nbreaks: A.\ntests: unit_ap\n" + block, "app.txt:3: no test program: unit_ap"},
      {"misreading: a\nbreaks: A.\ntests: scene:A.b\n" + block, "app.txt:3: no test program: scene:A.b"},
      {entryHead + "<<<<\na\n====\nb\n>>>>\n", "app.txt:4: a block belongs to no file"},
      {entryHead + "in: tests/a.cpp\n",
       "app.txt:4: no source of the product that is built here: tests/a.cpp"},
      {entryHead + "in: platform/macos/a.mm\n", "no source of the product that is built here"},
      {entryHead + "in: a.cpp\n<<<<\na\n====\nb\n", "app.txt:5: a block has no end"},
      {entryHead + "in: app/a.cpp\n<<<<\na\n>>>>\n", "app.txt:7: \">>>>\" is out of place"},
      {entryHead + "in: app/a.cpp\n<<<<\na\n====\nb\n====\n>>>>\n", "app.txt:9: \"====\" is out of place"},
      {entryHead + "in: app/a.cpp\n<<<<\na\n<<<<\n====\n>>>>\n", "app.txt:7: \"<<<<\" is out of place"},
      {entryHead + "in: app/a.cpp\n<<<<\n====\nb\n>>>>\n", "app.txt:5: a block replaces nothing"},
      {entryHead + "in: app/a.cpp\n<<<<\na\n====\na\n>>>>\n", "app.txt:5: a block changes nothing"},
  };
  for (const auto& [text, fault] : table)
    EXPECT_THAT(readTable("app", text).faults, ::testing::Contains(HasSubstr(fault))) << text;
}

/// A folder with tables and sources.
class MisreadingTreeTest : public ::testing::Test {
 protected:
  MisreadingTreeTest() {
    std::filesystem::remove_all(tree);
    std::filesystem::create_directories(tree / "app");
  }
  ~MisreadingTreeTest() override { std::filesystem::remove_all(tree); }

  void place(const std::string& file, const std::string& text) const { std::ofstream(tree / file) << text; }
  [[nodiscard]] static Misreading changing(std::vector<Replacement> replacements) {
    return {.name = "a",
            .rule = "A.",
            .programs = {"contract"},
            .table = "app",
            .line = 1,
            .replacements = std::move(replacements)};
  }

  /// Each test has a folder of its own: others run beside it.
  const std::filesystem::path tree =
      std::filesystem::path(::testing::TempDir()) / ("tamo-misreadings-" + std::to_string(::getpid()));
};

TEST_F(MisreadingTreeTest, ANameIsUniqueOverAllTables) {
  place("app.txt", entryHead + block);
  place("move.txt", "# none\n" + entryHead + block);
  place("notes.md", "no table");
  const auto all = readTables(tree);
  EXPECT_EQ(all.entries.size(), 2U);
  EXPECT_THAT(all.faults, ElementsAre("move.txt:2: an-entry is in app.txt as well"));
}

TEST_F(MisreadingTreeTest, WithoutAnEntryThereIsNothingToBeRight) {
  EXPECT_EQ(readTables(tree).faults.size(), 1U);
  EXPECT_EQ(readTables(tree / "missing").faults.size(), 1U);
}

TEST_F(MisreadingTreeTest, EntriesAreChosenByTheirNamesAndTheirTables) {
  place("app.txt", entryHead + block + "\nmisreading: other\nbreaks: B.\ntests: contract\n" + block);
  place("move.txt", "misreading: third\nbreaks: B.\ntests: contract\n" + block);
  const auto all = readTables(tree);
  const auto named = [&all](const std::vector<std::string>& names) {
    std::string found;
    for (const auto& entry : chosenFrom(all, names).entries)
      found += entry.name + " ";
    return found;
  };
  EXPECT_EQ(named({}), "an-entry other third ");
  EXPECT_EQ(named({"other"}), "other ");
  EXPECT_EQ(named({"app", "third"}), "an-entry other third ");
  EXPECT_THAT(chosenFrom(all, {"other", "fourth"}).faults, ElementsAre("no misreading and no table: fourth"));
}

TEST_F(MisreadingTreeTest, EachTextIsReplacedWhereItStands) {
  place("app/a.cpp", "one();\ntwo();\nthree();\n");
  const auto changed = withMisreading(tree, changing({{"app/a.cpp", "one();\n", "1();\n// one\n"},
                                                      {"app/a.cpp", "three();\n", ""},
                                                      {"app/a.cpp", "two();\n", "one();\nthree();\n"}}));
  EXPECT_EQ(changed.fault, std::nullopt);
  EXPECT_EQ(changed.texts.at("app/a.cpp"), "1();\n// one\none();\nthree();\n");
}

TEST_F(MisreadingTreeTest, APlaceThatIsGoneOrNoLongerOneIsAFault) {
  place("app/a.cpp", "one();\ntwo();\none();\n");
  EXPECT_EQ(withMisreading(tree, changing({{"app/a.cpp", "four();\n", ""}})).fault,
            "its text is not in app/a.cpp");
  EXPECT_EQ(withMisreading(tree, changing({{"app/a.cpp", "one();\n", ""}})).fault,
            "its text is in app/a.cpp more than once");
  EXPECT_EQ(withMisreading(tree, changing({{"app/b.cpp", "one();\n", ""}})).fault,
            "its text is not in app/b.cpp");
  const auto overlapping =
      withMisreading(tree, changing({{"app/a.cpp", "one();\ntwo();\n", ""}, {"app/a.cpp", "two();\n", ""}}));
  EXPECT_EQ(overlapping.fault, "two of its texts overlap in app/a.cpp");
  EXPECT_THAT(overlapping.texts, IsEmpty());
}

/// Fewer would mean that tables are lost.
constexpr std::size_t fewest = 150;

/// The tables of this tree. A change of the product that takes a misreading its place is told here at once.
TEST(MisreadingTablesTest, EveryPlaceStandsInTheTree) {
  const std::filesystem::path project = TAMO_SOURCE_DIR;
  const auto all = readTables(project / "tests/mutation/misreadings");
  EXPECT_THAT(all.faults, IsEmpty());
  EXPECT_GE(all.entries.size(), fewest);
  for (const auto& entry : all.entries)
    EXPECT_EQ(withMisreading(project, entry).fault, std::nullopt) << entry.table << ": " << entry.name;
}

}  // namespace
}  // namespace tamo::mutation

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "unit/house/tree.hpp"

/// The page on security says of each line which test shows it. A test that was renamed or removed would leave a promise
/// that nobody holds.
namespace tamo {
namespace {

namespace fs = std::filesystem;
using TestNames = std::set<std::string>;

bool isName(std::string_view text) {
  const auto belongs = [](unsigned char each) { return std::isalnum(each) != 0; };
  return !text.empty() && std::isupper(static_cast<unsigned char>(text.front())) != 0 &&
         std::ranges::all_of(text, belongs);
}

/// What a text names in backticks as SUITE.TEST.
TestNames testsNamedIn(const std::string& text) {
  TestNames found;
  std::istringstream rest(text);
  bool quoted = false;
  for (std::string piece; std::getline(rest, piece, '`'); quoted = !quoted) {
    const auto dot = piece.find('.');
    if (!quoted || dot == std::string::npos) continue;
    if (isName(piece.substr(0, dot)) && isName(piece.substr(dot + 1))) found.insert(piece);
  }
  return found;
}

/// "TEST_F(Suite, Name) {" as "Suite.Name"; empty for another line. A long one has its name in the next.
std::string testOf(const std::string& line) {
  const auto open = line.find('(');
  const auto comma = line.find(", ", open);
  const auto close = line.find(')', comma);
  if (close == std::string::npos || comma == std::string::npos) return "";
  return line.substr(open + 1, comma - open - 1) + "." + line.substr(comma + 2, close - comma - 2);
}

/// Every test of the tree as SUITE.TEST; of one with parameters, without them.
TestNames testsOfTheTree() {
  TestNames found;
  for (const auto& entry : fs::recursive_directory_iterator(root / "tests")) {
    if (entry.path().extension() != ".cpp") continue;
    const auto lines = linesOf(contents(entry.path()));
    for (std::size_t at = 0; at < lines.size(); ++at) {
      if (!lines[at].starts_with("TEST")) continue;
      const bool goesOn = lines[at].ends_with(",") && at + 1 < lines.size();
      const auto rest = goesOn ? lines[at + 1] : "";
      found.insert(testOf(lines[at] + " " + rest.substr(std::min(rest.find_first_not_of(' '), rest.size()))));
    }
  }
  return found;
}

/// The rows of the page's tables, without their heads.
std::vector<std::string> rowsOf(const std::string& page) {
  std::vector<std::string> rows;
  const auto lines = linesOf(page);
  for (std::size_t at = 0; at < lines.size(); ++at) {
    const bool head = at + 1 < lines.size() && lines[at + 1].starts_with("|---");
    if (lines[at].starts_with("|") && !lines[at].starts_with("|---") && !head) rows.push_back(lines[at]);
  }
  return rows;
}

const std::string page = contents(root / "docs/security.md");

TEST(SecurityPageTest, EveryTestThatItNamesIsThere) {
  const auto there = testsOfTheTree();
  const auto named = testsNamedIn(page);
  EXPECT_GT(named.size(), 40U);
  for (const auto& test : named)
    EXPECT_TRUE(there.contains(test)) << test;
}

TEST(SecurityPageTest, EveryRowNamesATestOrSaysWhyThereIsNone) {
  const auto rows = rowsOf(page);
  EXPECT_GT(rows.size(), 20U);
  for (const auto& row : rows)
    EXPECT_TRUE(!testsNamedIn(row).empty() || row.contains("No test:")) << row;
}

/// The test of the test: a name that nobody has, and a row that promises without one.
TEST(SecurityPageTest, ANameThatNobodyHasIsSeen) {
  EXPECT_FALSE(testsOfTheTree().contains("SecurityPageTest.ANameThatNobodyHas"));
  EXPECT_TRUE(testsOfTheTree().contains("SecurityPageTest.ANameThatNobodyHasIsSeen"));
  EXPECT_EQ(testsNamedIn("`Tamo.app` `A.B` and `SuiteTest.Name`"), (TestNames{"A.B", "SuiteTest.Name"}));
  EXPECT_EQ(rowsOf("| head |\n|---|\n| a |\n\ntext\n| b |\n"), (std::vector<std::string>{"| a |", "| b |"}));
}

}  // namespace
}  // namespace tamo

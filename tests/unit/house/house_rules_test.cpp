#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "unit/house/tree.hpp"

/// The rules of the house that a compiler does not hold: which folder may include which, what stands only in
/// the platform's folders, what the standard libraries of both systems have, and how long a file may grow.
namespace tamo {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

struct Source {
  std::string path;
  std::string text;
};

std::vector<Source> sources(const Texts& folders) {
  std::vector<Source> found;
  for (const auto& folder : folders) {
    for (const auto& entry : fs::recursive_directory_iterator(root / folder)) {
      const auto extension = entry.path().extension();
      if (extension != ".cpp" && extension != ".hpp" && extension != ".mm") continue;
      found.push_back({entry.path().lexically_relative(root).string(), contents(entry.path())});
    }
  }
  return found;
}

/// The product, from the top down, and above it what reads its log.
const Texts layers{"support", "app", "move", "launch", "hardstop", "guard", "platform", "values"};
/// What decides, and asks an operating system for nothing but through the platform.
const Texts deciding{"app", "move", "launch", "hardstop", "guard"};
/// The rooms that have an order among themselves, from the top down; the product needs none of the played Mac.
const Texts rooms{"stage/control", "stage/picture", "stage/tools",    "stage/core",
                  "stage/launchd", "stage/common",  "platform/stage", "platform/posix",
                  "platform",      "values/open",   "values"};
const Texts everything{"support", "app",      "move",   "launch", "hardstop",
                       "guard",   "platform", "values", "stage",  "tests"};

std::string folderOf(const std::string& path) {
  return path.substr(0, path.find('/'));
}

std::string roomOf(const std::string& path) {
  return fs::path(path).parent_path().string();
}

/// A header and its source are one module.
std::string moduleOf(const std::string& path) {
  return fs::path(path).replace_extension().string();
}

Texts matches(const std::string& text, const std::regex& pattern) {
  Texts found;
  for (auto it = std::sregex_iterator(text.begin(), text.end(), pattern); it != std::sregex_iterator();
       ++it) {
    found.push_back((*it)[1]);
  }
  return found;
}

const std::regex projectInclude(R"re((?:^|\n)#include "([^"]+)")re");
const std::regex systemInclude(R"re((?:^|\n)#(?:include|import) <([^>]+)>)re");

TEST(HouseRulesTest, IncludesRunDownwardsOnly) {
  for (const auto& source : sources(layers)) {
    const auto own = std::find(layers.begin(), layers.end(), folderOf(source.path));
    for (const auto& include : matches(source.text, projectInclude)) {
      const auto used = std::find(layers.begin(), layers.end(), folderOf(include));
      EXPECT_NE(used, layers.end()) << source.path << " includes " << include;
      EXPECT_GE(used - own, 0) << source.path << " includes " << include << ", which lies above it";
    }
  }
}

TEST(HouseRulesTest, ARoomOfThePlayedMacNeedsNoneAboveIt) {
  for (const auto& source : sources({"stage"})) {
    const auto own = std::find(rooms.begin(), rooms.end(), roomOf(source.path));
    ASSERT_NE(own, rooms.end()) << source.path << " is in no room";
    for (const auto& include : matches(source.text, projectInclude)) {
      const auto used = std::find(rooms.begin(), rooms.end(), roomOf(include));
      EXPECT_NE(used, rooms.end()) << source.path << " includes " << include;
      EXPECT_GE(used - own, 0) << source.path << " includes " << include << ", which lies above it";
    }
  }
}

/// What each module of the product and of the played Mac includes.
std::map<std::string, std::set<std::string>> modules() {
  std::map<std::string, std::set<std::string>> found;
  for (const auto& source :
       sources({"support", "app", "move", "launch", "hardstop", "guard", "platform", "values", "stage"}))
    for (const auto& include : matches(source.text, projectInclude))
      if (moduleOf(include) != moduleOf(source.path)) found[moduleOf(source.path)].insert(moduleOf(include));
  return found;
}

TEST(HouseRulesTest, NoTwoModulesNeedEachOther) {
  auto left = modules();
  // Whoever needs nobody that is left goes; those that stay for ever need each other in a circle.
  for (std::size_t before = 0; before != left.size();) {
    before = left.size();
    std::erase_if(left, [&left](const auto& entry) {
      return std::ranges::none_of(entry.second, [&left](const auto& used) { return left.contains(used); });
    });
  }
  for (const auto& [module, used] : left)
    ADD_FAILURE() << module << " needs itself, through " << *used.begin();
}

TEST(HouseRulesTest, NothingAboveThePlatformKnowsABackend) {
  for (const auto& source : sources(deciding)) {
    for (const auto& include : matches(source.text, projectInclude)) {
      EXPECT_EQ(std::ranges::count(include, '/'), 1) << source.path << " includes " << include;
    }
  }
}

TEST(HouseRulesTest, NothingAboveThePlatformIncludesASystemHeader) {
  for (const auto& source : sources(deciding)) {
    for (const auto& include : matches(source.text, systemInclude)) {
      const bool standard = include.find('.') == std::string::npos;
      EXPECT_TRUE(standard || include == "nlohmann/json.hpp")
          << source.path << " includes <" << include << ">";
    }
  }
}

/// Whoever includes one has them all set up before main begins, locales and all, in a process that lives for
/// milliseconds.
TEST(HouseRulesTest, TheProductGoesWithoutStreams) {
  const std::set<std::string> streams{"iostream", "fstream", "sstream", "istream",
                                      "ostream",  "iomanip", "locale"};
  for (const auto& source : sources({"app", "move", "launch", "hardstop", "guard", "platform", "values"}))
    for (const auto& include : matches(source.text, systemInclude))
      EXPECT_FALSE(streams.contains(include)) << source.path << " includes <" << include << ">";
}

TEST(HouseRulesTest, ThePlatformIsAskedForInItsFoldersAlone) {
  for (const auto& source : sources({"support", "app", "move", "launch", "hardstop", "guard", "values"})) {
    EXPECT_EQ(source.text.find("__APPLE__"), std::string::npos) << source.path;
    EXPECT_EQ(source.text.find("__linux__"), std::string::npos) << source.path;
  }
}

TEST(HouseRulesTest, OnlyWhatBothLibrariesHaveIsUsed) {
  const Texts missing{
      "<format>",     "<print>",           "<generator>",  "<syncstream>",     "<spanstream>",
      "<stacktrace>", "<memory_resource>", "std::jthread", "std::stop_token",  "move_only_function",
      "ranges::to<",  "ranges::to(",       "views::zip",   "views::join_with", "std::pmr"};
  for (const auto& source : sources(everything)) {
    if (source.path == "tests/unit/house/house_rules_test.cpp") continue;
    for (const auto& name : missing)
      EXPECT_EQ(source.text.find(name), std::string::npos) << source.path << " has " << name;
  }
}

/// Where a macro of this name is given what a call gives.
Texts givenCalls(const std::string& text, const std::string& macro) {
  Texts found;
  for (auto at = text.find(macro + '('); at != std::string::npos; at = text.find(macro + '(', at + 1)) {
    const auto argument = at + macro.size() + 1;
    const auto stop = text.find_first_of("()", argument);
    if (stop != std::string::npos && text[stop] == '(') found.push_back(text.substr(at, stop - at));
  }
  return found;
}

/// The macros that read a wait's status take the address of their argument on a Mac.
TEST(HouseRulesTest, AWaitsStatusIsReadFromAVariable) {
  const std::string w = "W";
  for (const auto& macro :
       {w + "IFEXITED", w + "EXITSTATUS", w + "IFSIGNALED", w + "TERMSIG", w + "IFSTOPPED", w + "STOPSIG"})
    for (const auto& source : sources(everything))
      EXPECT_EQ(givenCalls(source.text, macro), Texts{}) << source.path;
}

TEST(HouseRulesTest, NoFileOutgrowsOneSitting) {
  for (const auto& source : sources(everything)) {
    EXPECT_LE(std::count(source.text.begin(), source.text.end(), '\n'), 400) << source.path;
  }
}

TEST(HouseRulesTest, MainIsShort) {
  const auto text = contents(root / "app/main.cpp");
  EXPECT_FALSE(text.empty());
  EXPECT_LT(std::count(text.begin(), text.end(), '\n'), 60);
}

TEST(HouseRulesTest, EveryHeaderGuardsItself) {
  for (const auto& source : sources(everything)) {
    EXPECT_EQ(source.path.ends_with(".hpp"), source.text.starts_with("#pragma once\n")) << source.path;
  }
}

/// The rules would hold of an empty tree as well, so the tree is counted.
TEST(HouseRulesTest, TheRulesSeeTheWholeHouse) {
  std::set<std::string> seen;
  for (const auto& source : sources(everything))
    seen.insert(folderOf(source.path));
  EXPECT_EQ(seen, std::set<std::string>(everything.begin(), everything.end()));
}

}  // namespace
}  // namespace tamo

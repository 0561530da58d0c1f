#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "unit/house/tree.hpp"

/// The newcomer's map: the picture of the house and what each folder says of itself are held to the tree.
namespace tamo {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

/// The picture: the first block of the page that is set as it stands.
Names picture() {
  const auto lines = linesOf(contents(root / "docs/architecture.md"));
  const auto begin = std::ranges::find(lines, "```");
  if (begin == lines.end()) return {};
  return {begin + 1, std::find(begin + 1, lines.end(), "```")};
}

/// The words of a line that end with a slash, without it.
Names foldersIn(const std::string& line) {
  std::istringstream words(line);
  Names found;
  for (std::string word; words >> word;)
    if (word.ends_with('/')) found.push_back(word.substr(0, word.size() - 1));
  return found;
}

/// Every folder that the picture names, in its order; one that is indented further lies in the one above it.
Names drawnFolders() {
  Names drawn;
  std::string outer;
  for (const auto& line : picture()) {
    if (!line.starts_with("  ")) continue;
    const bool within = line.starts_with("    ");
    for (const auto& name : foldersIn(line)) {
      if (!within) outer = name;
      drawn.push_back(within ? outer + "/" + name : name);
    }
  }
  return drawn;
}

bool isOurs(const fs::directory_entry& entry) {
  const auto name = entry.path().filename().string();
  return entry.is_directory() && !name.starts_with('.') && name != "build";
}

/// The folders at the root, and the rooms of those that have some.
std::set<std::string> standingFolders() {
  std::set<std::string> found;
  for (const auto& entry : fs::directory_iterator(root)) {
    if (!isOurs(entry)) continue;
    const auto name = entry.path().filename().string();
    found.insert(name);
    if (name != "platform" && name != "values" && name != "stage") continue;
    for (const auto& room : fs::directory_iterator(entry.path()))
      if (isOurs(room)) found.insert(name + "/" + room.path().filename().string());
  }
  return found;
}

TEST(HouseMapTest, ThePictureShowsEveryFolderAndNoOther) {
  const auto drawn = drawnFolders();
  const auto standing = standingFolders();
  EXPECT_EQ(std::set<std::string>(drawn.begin(), drawn.end()), standing);
  EXPECT_EQ(drawn.size(), standing.size()) << "a folder is drawn twice";
}

TEST(HouseMapTest, ThePictureHasTheLayersInTheirOrder) {
  const Names layers{"app", "move", "launch", "hardstop", "guard", "platform", "values"};
  Names drawn;
  for (const auto& name : drawnFolders())
    if (std::ranges::find(layers, name) != layers.end()) drawn.push_back(name);
  EXPECT_EQ(drawn, layers);
}

/// Title, an empty line, and three lines: who lives there, what is peculiar, who may come in.
TEST(HouseMapTest, EveryFolderSaysInThreeLinesWhoLivesThere) {
  auto folders = standingFolders();
  for (const auto& entry : fs::directory_iterator(root / "tests"))
    if (isOurs(entry)) folders.insert("tests/" + entry.path().filename().string());
  for (const auto& folder : folders) {
    const auto lines = linesOf(contents(root / folder / "README.md"));
    ASSERT_EQ(lines.size(), 5U) << folder;
    EXPECT_EQ(lines[0], "# " + folder + "/");
    EXPECT_TRUE(lines[1].empty()) << folder;
    for (std::size_t line = 2; line < lines.size(); ++line)
      EXPECT_GT(lines[line].size(), 20U) << folder << " says too little";
  }
}

/// The root is for people: what everybody needs, and nothing beside it.
TEST(HouseMapTest, TheRootHasThreeCommands) {
  std::set<std::string> commands;
  for (const auto& entry : fs::directory_iterator(root)) {
    const bool runs = (entry.status().permissions() & fs::perms::owner_exec) != fs::perms::none;
    if (entry.is_regular_file() && runs) commands.insert(entry.path().filename().string());
  }
  EXPECT_EQ(commands, (std::set<std::string>{"accept", "check", "rehearse"}));
}

}  // namespace
}  // namespace tamo

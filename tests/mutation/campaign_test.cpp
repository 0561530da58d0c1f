#include "mutation/campaign.hpp"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

namespace tamo::mutation {
namespace {

namespace fs = std::filesystem;

/// A project of the folders that a build needs, with one file in each, and a place for its copies.
class CopiedTreeTest : public ::testing::Test {
 protected:
  CopiedTreeTest() {
    put("CMakeLists.txt");
    for (const auto* folder : {"app", "guard", "hardstop", "launch", "move", "platform", "stage", "tests",
                               "values", "docs", "support"})
      put(std::string(folder) + "/one.cpp");
  }
  ~CopiedTreeTest() override { fs::remove_all(root_); }
  CopiedTreeTest(const CopiedTreeTest&) = delete;
  CopiedTreeTest& operator=(const CopiedTreeTest&) = delete;

  void put(const std::string& name) const {
    fs::create_directories((project() / name).parent_path());
    std::ofstream(project() / name) << "as it was: " << name;
  }
  [[nodiscard]] fs::path project() const { return root_ / "project"; }
  [[nodiscard]] Tree tree() const { return snapshot(project(), root_ / "work"); }
  [[nodiscard]] std::string copied(const std::string& name) const {
    return wholeText(root_ / "work/tree" / name);
  }

 private:
  // Others run beside it.
  fs::path root_ = fs::temp_directory_path() / ("tamo-copied-tree-" + std::to_string(::getpid()));
};

TEST_F(CopiedTreeTest, AChangedTextStandsInTheCopyAlone) {
  const auto original = tree();
  writeTexts(original, {{"app/one.cpp", "changed"}});
  EXPECT_EQ(copied("app/one.cpp"), "changed");
  EXPECT_EQ(copied("move/one.cpp"), "as it was: move/one.cpp");
  EXPECT_EQ(wholeText(project() / "app/one.cpp"), "as it was: app/one.cpp");
}

TEST_F(CopiedTreeTest, TheListOfTheBuildIsChangedLikeASource) {
  const auto original = tree();
  writeTexts(original, {{"CMakeLists.txt", "changed"}});
  EXPECT_EQ(copied("CMakeLists.txt"), "changed");
  writeTexts(original, {});
  EXPECT_EQ(copied("CMakeLists.txt"), "as it was: CMakeLists.txt");
}

TEST_F(CopiedTreeTest, WhatIsGoneFromTheProjectIsGoneFromTheCopy) {
  writeTexts(tree(), {});
  fs::remove(project() / "app/one.cpp");
  writeTexts(tree(), {});
  EXPECT_FALSE(fs::exists(project().parent_path() / "work/tree/app/one.cpp"));
}

}  // namespace
}  // namespace tamo::mutation

#include "values/paths.hpp"

#include <gtest/gtest.h>
#include <vector>

namespace tamo::values {
namespace {

struct Standardised {
  std::string_view path;
  std::string_view standardised;
};

TEST(PathsTest, StandardisingIsAMatterOfText) {
  const std::vector<Standardised> table{
      {"/Applications/Tamo.app", "/Applications/Tamo.app"},
      {"/Applications/../Applications/Tamo.app/", "/Applications/Tamo.app"},
      {"/a/./b/.", "/a/b"},
      {"//a///b//", "/a/b"},
      {"/a/b/..", "/a"},
      {"/a/b/../../..", "/"},
      {"/..", "/"},
      {"/a/../../b", "/b"},
      {"/", "/"},
      {"///", "/"},
      {"/a/.../..b/b..", "/a/.../..b/b.."},
      {"/~/a/~u", "/~/a/~u"},
      {"/private/tmp/x", "/private/tmp/x"},
      {"/a b/\u00E9", "/a b/\u00E9"},
  };
  for (const auto& row : table) {
    EXPECT_EQ(standardisedPath(row.path), row.standardised) << row.path;
    EXPECT_EQ(standardisedPath(row.standardised), row.standardised) << row.path;
  }
}

TEST(PathsTest, ARelativePathIsTakenFromTheRoot) {
  EXPECT_EQ(standardisedPath("a/b"), "/a/b");
  EXPECT_EQ(standardisedPath("a/../b"), "/b");
  EXPECT_EQ(standardisedPath(""), "/");
}

TEST(PathsTest, JoiningLeavesOneSlashBetween) {
  EXPECT_EQ(joinedPath("/a", "b/c"), "/a/b/c");
  EXPECT_EQ(joinedPath("/a/", "/b"), "/a/b");
  EXPECT_EQ(joinedPath("/a//", "b"), "/a/b");
  EXPECT_EQ(joinedPath("/", "b"), "/b");
  EXPECT_EQ(joinedPath("", "b"), "/b");
  EXPECT_EQ(joinedPath("/", ""), "/");
}

TEST(PathsTest, JoiningChangesNothingElse) {
  EXPECT_EQ(joinedPath("/a/..//b", "./c/"), "/a/..//b/./c/");
}

TEST(PathsTest, ParentAndLastComponentPartAtTheLastSlash) {
  EXPECT_EQ(parentPath("/a/b"), "/a");
  EXPECT_EQ(lastComponent("/a/b"), "b");
  EXPECT_EQ(parentPath("/a"), "/");
  EXPECT_EQ(lastComponent("/a"), "a");
}

TEST(PathsTest, TheRootIsItsOwnParent) {
  EXPECT_EQ(parentPath("/"), "/");
  EXPECT_EQ(lastComponent("/"), "");
}

}  // namespace
}  // namespace tamo::values

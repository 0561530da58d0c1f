#include "platform/resolved_path.hpp"

#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <string>

namespace tamo::platform {
namespace {

/// Items by the paths that lead to them.
using Items = std::map<std::string, std::string>;

std::string resolvedAmong(const Items& items, const std::string& path) {
  return resolvedPath(path, [&items](const std::string& from) {
    const auto found = items.find(from);
    return found == items.end() ? std::nullopt : std::optional(found->second);
  });
}

TEST(ResolvedPathTest, AnExistingItemIsNamedWithoutLinks) {
  EXPECT_EQ(resolvedAmong({{"/link/file", "/folder/file"}}, "/link/file"), "/folder/file");
}

TEST(ResolvedPathTest, LinksAreFollowedOfThePathAsItIs) {
  EXPECT_EQ(resolvedAmong({{"/link/../file", "/elsewhere/file"}, {"/file", "/file"}}, "/link/../file"),
            "/elsewhere/file");
}

TEST(ResolvedPathTest, APathThatLeadsNowhereIsOnlyStandardised) {
  EXPECT_EQ(resolvedAmong({}, "/link/./missing/../x/"), "/link/x");
  EXPECT_EQ(resolvedAmong({}, "/private/tmp/missing"), "/private/tmp/missing");
}

TEST(ResolvedPathTest, PrivateIsDroppedWhereTheShorterPathLeadsToTheSameItem) {
  const Items items{{"/tmp/x", "/private/tmp/x"}, {"/private/tmp/x", "/private/tmp/x"}};
  EXPECT_EQ(resolvedAmong(items, "/tmp/x"), "/tmp/x");
  EXPECT_EQ(resolvedAmong(items, "/private/tmp/x"), "/tmp/x");
}

TEST(ResolvedPathTest, PrivateStaysWhereTheShorterPathLeadsElsewhereOrNowhere) {
  EXPECT_EQ(resolvedAmong({{"/private/x", "/private/x"}}, "/private/x"), "/private/x");
  EXPECT_EQ(resolvedAmong({{"/private/x", "/private/x"}, {"/x", "/x"}}, "/private/x"), "/private/x");
}

}  // namespace
}  // namespace tamo::platform

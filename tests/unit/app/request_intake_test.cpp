#include "app/request_intake.hpp"

#include <gtest/gtest.h>

namespace tamo {
namespace {

using Arguments = std::vector<std::string>;

struct SwitchCase {
  const char* situation;
  Arguments arguments;
  std::optional<std::string> action;
};

TEST(ActionOfArgumentsTest, TheFirstSwitchWithItsFollowerCounts) {
  const std::vector<SwitchCase> cases{
      {"no arguments at all", {}, std::nullopt},
      {"only the program", {"/p"}, std::nullopt},
      {"the switch and a name", {"/p", "--core-action", "sync"}, "sync"},
      {"a second switch", {"/p", "--core-action", "sync", "--core-action", "status"}, "sync"},
      {"the switch at the end", {"/p", "--core-action"}, std::nullopt},
      {"the switch as its own value", {"/p", "--core-action", "--core-action"}, "--core-action"},
      {"the switch as the program path", {"--core-action", "reseat"}, "reseat"},
      {"a name that no route knows", {"/p", "--core-action", "audit-install"}, "audit-install"},
      {"an empty name", {"/p", "--core-action", ""}, ""},
      {"bytes that are no text", {"/p", "--core-action", "s\xFFync"}, "s\uFFFDync"},
      {"other arguments before it", {"/p", "-x", "--core-action", "restart", "y"}, "restart"},
      {"the value joined with a sign", {"/p", "--core-action=sync"}, std::nullopt},
      {"other letter case", {"/p", "--Core-Action", "sync"}, std::nullopt},
  };
  for (const auto& one : cases) {
    EXPECT_EQ(RequestIntake::actionOfArguments(one.arguments), one.action) << one.situation;
  }
}

struct UrlCase {
  const char* url;
  std::optional<std::string> action;
};

TEST(ActionOfUrlTest, OnlyTheSevenNamesBehindTheSchemeAreAccepted) {
  const std::vector<UrlCase> cases{
      {"tamo-core://register", "register"},
      {"tamo-core://unregister", "unregister"},
      {"tamo-core://reseat", "reseat"},
      {"tamo-core://restart", "restart"},
      {"tamo-core://sync", "sync"},
      {"tamo-core://status", "status"},
      {"tamo-core://move-to-applications", "move-to-applications"},
      {"tamo-core:sync", "sync"},
      {"tamo-core:///sync/", "sync"},
      {"tamo-core:////sync////", "sync"},
      {"tamo-core://bogus", std::nullopt},
      {"tamo-core://audit-install", std::nullopt},
      {"tamo-core://sync?x=1", std::nullopt},
      {"tamo-core://sync#x", std::nullopt},
      {"tamo-core://sync/status", std::nullopt},
      {"tamo-core://Sync", std::nullopt},
      {"tamo-core://", std::nullopt},
      {"tamo-core:", std::nullopt},
      {"TAMO-CORE://status", std::nullopt},
      {"tamo-cor://status", std::nullopt},
      {"tamo-core2://status", std::nullopt},
      {"://status", std::nullopt},
      {"status", std::nullopt},
      {"", std::nullopt},
  };
  for (const auto& one : cases)
    EXPECT_EQ(RequestIntake::actionOfUrl(one.url, "tamo-core"), one.action) << one.url;
}

}  // namespace
}  // namespace tamo

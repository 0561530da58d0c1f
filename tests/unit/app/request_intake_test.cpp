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
      {"a bare name", {"/p", "sync"}, std::nullopt},
      {"a bare URL", {"/p", "tamo-core://sync"}, std::nullopt},
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
      {"a blank behind the switch", {"/p", "--core-action ", "sync"}, std::nullopt},
      {"one dash", {"/p", "-core-action", "sync"}, std::nullopt},
      {"more dashes", {"/p", "---core-action", "sync"}, std::nullopt},
      {"the switch as its own value with more behind it",
       {"/p", "--core-action", "--core-action", "sync"},
       "--core-action"},
      {"an empty name before a good one", {"/p", "--core-action", "", "--core-action", "sync"}, ""},
      {"an unknown name before a good one", {"/p", "--core-action", "x", "--core-action", "sync"}, "x"},
      {"another switch as the value", {"/p", "--core-action", "--help", "sync"}, "--help"},
      {"a URL as the value", {"/p", "--core-action", "tamo-core://sync"}, "tamo-core://sync"},
      {"slashes around the value", {"/p", "--core-action", "/sync/"}, "/sync/"},
      {"blanks around the value", {"/p", "--core-action", " sync\n"}, " sync\n"},
      {"an escape in the value", {"/p", "--core-action", "%73ync"}, "%73ync"},
      {"a value in capitals", {"/p", "--core-action", "SYNC"}, "SYNC"},
      {"an accent in two signs", {"/p", "--core-action", "e\u0301"}, "e\u0301"},
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
      {"tamo-core://SYNC", std::nullopt},
      {"tamo-core:/sync", "sync"},
      {"tamo-core:sync/", "sync"},
      {"tamo-core:///move-to-applications///", "move-to-applications"},
      {"tamo-core://move-to-applications?", std::nullopt},
      {"tamo-core://%73ync", std::nullopt},
      {"tamo-core://syn%63", std::nullopt},
      {"tamo-core://sync%2F", std::nullopt},
      {"%74amo-core://sync", std::nullopt},
      {"tamo-core://sync?", std::nullopt},
      {"tamo-core://sync#", std::nullopt},
      {"tamo-core://sync/?x", std::nullopt},
      {"tamo-core://?sync", std::nullopt},
      {"tamo-core://user@sync", std::nullopt},
      {"tamo-core://sync:80", std::nullopt},
      {"tamo-core://x/sync", std::nullopt},
      {"tamo-core://sync//status", std::nullopt},
      {"tamo-core::sync", std::nullopt},
      {"tamo-core:// sync", std::nullopt},
      {"tamo-core://sync ", std::nullopt},
      {"tamo-core://sync.", std::nullopt},
      {"tamo-core://sync\u0301", std::nullopt},
      {"tamo-core://tamo-core://sync", std::nullopt},
      {" tamo-core://sync", std::nullopt},
      {"Tamo-core://sync", std::nullopt},
      {"tamo_core://sync", std::nullopt},
      {"tamo-core//sync", std::nullopt},
      {"sync:tamo-core", std::nullopt},
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

TEST(ActionOfUrlTest, TheSchemeIsTheOneThatIsAskedFor) {
  EXPECT_EQ(RequestIntake::actionOfUrl("x:sync", "x"), "sync");
  EXPECT_EQ(RequestIntake::actionOfUrl("a-longer-scheme:/sync", "a-longer-scheme"), "sync");
  EXPECT_EQ(RequestIntake::actionOfUrl("tamo-core:sync", "x"), std::nullopt);
}

}  // namespace
}  // namespace tamo

#include "stage/launchd/launchctl.hpp"

#include <gtest/gtest.h>

namespace tamo::stage {
namespace {

using Words = std::vector<std::string>;

TEST(LaunchctlTest, TheKnownUsesAreAskedAsTheyStand) {
  const std::vector<Words> uses = {{"print", "gui/501/a"},
                                   {"kickstart", "gui/501/a"},
                                   {"kickstart", "-k", "gui/501/a"},
                                   {"bootstrap", "gui/501", "/a.plist"},
                                   {"bootout", "gui/501/a"}};
  for (const auto& use : uses)
    EXPECT_EQ(launchctlQuestion(use), use);
}

TEST(LaunchctlTest, NothingElseIsAsked) {
  const std::vector<Words> uses = {{},
                                   {"print"},
                                   {"print", "a", "b"},
                                   {"kickstart", "-k"},
                                   {"kickstart", "-p", "gui/501/a"},
                                   {"shutdown"},
                                   {"service-status", "x"}};
  for (const auto& use : uses)
    EXPECT_FALSE(launchctlQuestion(use));
}

}  // namespace
}  // namespace tamo::stage

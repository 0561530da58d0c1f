#include "app/success_rule.hpp"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tamo {
namespace {

struct Case {
  std::string action;
  bool mayNeedApproval;
  std::optional<std::int64_t> expectedStatus;
};

TEST(SuccessRuleTest, EveryActionHasItsExpectedStatus) {
  const std::vector<Case> cases{
      {"register", true, 1},
      {"reseat", true, 1},
      {"restart", true, 1},
      {"sync", false, 1},
      {"unregister", false, 0},
      {"status", false, std::nullopt},
      {"audit-install", false, std::nullopt},
      {"anything else", false, 0},
      {"Register", false, 0},
  };
  for (const auto& one : cases) {
    EXPECT_EQ(SuccessRule::mayNeedApproval(one.action), one.mayNeedApproval) << one.action;
    EXPECT_EQ(SuccessRule::expectedStatus(one.action), one.expectedStatus) << one.action;
  }
}

}  // namespace
}  // namespace tamo

#include <gtest/gtest.h>

#include "launch/agent_registration.hpp"
#include "launch/launchctl.hpp"
#include "launch/print_reading.hpp"

namespace tamo {
namespace {

TEST(AgentStatusTest, TheNumbersAreThoseOfServiceManagement) {
  EXPECT_EQ(AgentStatus::notRegistered, 0);
  EXPECT_EQ(AgentStatus::enabled, 1);
  EXPECT_EQ(AgentStatus::requiresApproval, 2);
  EXPECT_EQ(AgentStatus::notFound, 3);
}

TEST(KickstartTest, NobodyIsKilledUnlessItIsSaid) {
  EXPECT_FALSE(Launchctl::Kickstart().kill);
}

TEST(PrintResultTest, BeginsAsASuccessWithoutAText) {
  EXPECT_EQ(PrintResult().code, 0);
  EXPECT_FALSE(PrintResult().text);
}

}  // namespace
}  // namespace tamo

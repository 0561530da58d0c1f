#include <gtest/gtest.h>

#include "guard/live_data_guard.hpp"

namespace tamo::LiveDataGuard {
namespace {

TEST(AccessTest, NobodyMayTouchLiveDataUnlessItIsSaid) {
  EXPECT_FALSE(Access().live);
  EXPECT_EQ(dataHome({}), isolatedHome);
}

}  // namespace
}  // namespace tamo::LiveDataGuard

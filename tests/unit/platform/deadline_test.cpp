#include "platform/deadline.hpp"

#include <gtest/gtest.h>

namespace tamo::platform {
namespace {

using namespace std::chrono_literals;
using std::chrono::nanoseconds;
using Wall = std::chrono::system_clock;

TEST(DeadlineTest, IsTheMomentAfterTheWait) {
  EXPECT_EQ(deadlineAfter(Instant(3s), 2s), Instant(5s));
  EXPECT_EQ(deadlineAfter(Instant(3s), -5s), Instant(-2s));
  EXPECT_EQ(deadlineAfter(nanoseconds::max() - 2s, 2s), nanoseconds::max());
  EXPECT_EQ(deadlineAfter(Wall::time_point(3s), 2s), Wall::time_point(5s));
  EXPECT_EQ(deadlineAfter(Wall::time_point::max() - 2s, 2s), Wall::time_point::max());
}

TEST(DeadlineDeathTest, AMomentThatNoClockReachesIsFatal) {
  EXPECT_DEATH(static_cast<void>(deadlineAfter(nanoseconds::max() - 2s, 2s + 1ns)),
               "fatal: a deadline overflows");
  EXPECT_DEATH(static_cast<void>(deadlineAfter(nanoseconds::min() + 2s, -2s - 1ns)),
               "fatal: a deadline overflows");
  EXPECT_DEATH(static_cast<void>(deadlineAfter(Wall::time_point::max() - 2s, 3s)),
               "fatal: a deadline overflows");
}

}  // namespace
}  // namespace tamo::platform

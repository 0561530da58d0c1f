#include "platform/checked_sum.hpp"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>

namespace tamo::platform {
namespace {

using namespace std::chrono_literals;
using std::chrono::nanoseconds;
using Wall = std::chrono::system_clock;

template <class Integer>
constexpr Integer most = std::numeric_limits<Integer>::max();
template <class Integer>
constexpr Integer least = std::numeric_limits<Integer>::min();

TEST(CheckedSumTest, ASumThatFitsIsGiven) {
  EXPECT_EQ(checkedSum<std::int64_t>(-5, 3, "no"), -2);
  EXPECT_EQ(checkedSum<std::int64_t>(most<std::int64_t> - 1, 1, "no"), most<std::int64_t>);
  EXPECT_EQ(checkedSum<std::int64_t>(least<std::int64_t> + 1, -1, "no"), least<std::int64_t>);
  EXPECT_EQ(checkedSum<std::uint64_t>(most<std::uint64_t> - 1, 1, "no"), most<std::uint64_t>);
}

TEST(CheckedSumDeathTest, ASumThatDoesNotFitIsFatalWithItsOwnSentence) {
  EXPECT_DEATH(static_cast<void>(checkedSum<std::int64_t>(most<std::int64_t>, 1, "too much")),
               "fatal: too much");
  EXPECT_DEATH(static_cast<void>(checkedSum<std::int64_t>(least<std::int64_t>, -1, "too little")),
               "fatal: too little");
  EXPECT_DEATH(static_cast<void>(checkedSum<std::uint64_t>(most<std::uint64_t>, 1, "too much")),
               "fatal: too much");
}

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

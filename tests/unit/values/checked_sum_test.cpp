#include "values/checked_sum.hpp"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>

namespace tamo::values {
namespace {

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

}  // namespace
}  // namespace tamo::values

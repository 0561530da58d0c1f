#pragma once

#include <chrono>

#include "platform/clock.hpp"
#include "values/checked_sum.hpp"

/// Deadlines. One that wraps lies in the past, and a hard stop that takes it for its own kills at once; so a
/// sum that does not fit stops the process (fatal). Pure otherwise; any thread.
namespace tamo::platform {

/// The moment `wait` after `now`. A negative wait is one that is over.
[[nodiscard]] inline Instant deadlineAfter(Instant now, std::chrono::nanoseconds wait) {
  return Instant(values::checkedSum(now.count(), wait.count(), "a deadline overflows"));
}

/// The same by the wall clock.
[[nodiscard]] inline std::chrono::system_clock::time_point deadlineAfter(
    std::chrono::system_clock::time_point now, std::chrono::system_clock::duration wait) {
  using Wall = std::chrono::system_clock;
  const auto sum = values::checkedSum(now.time_since_epoch().count(), wait.count(), "a deadline overflows");
  return Wall::time_point(Wall::duration(sum));
}

}  // namespace tamo::platform

#pragma once

#include <chrono>
#include <string_view>

#include "platform/clock.hpp"
#include "values/fatal.hpp"

/// Sums that must not wrap. A deadline that wraps lies in the past, and a hard stop that takes it for its own
/// kills at once; a start time that wraps is another process's. No clock of a sane machine comes near it, so
/// each of these stops the process (fatal). Pure otherwise; any thread.
namespace tamo::platform {

/// `left` + `right`; `failure` is what the process stops with when that does not fit.
template <class Integer>
[[nodiscard]] Integer checkedSum(Integer left, Integer right, std::string_view failure) {
  Integer sum{};
  if (__builtin_add_overflow(left, right, &sum)) fatal(failure);
  return sum;
}

/// The moment `wait` after `now`. A negative wait is one that is over.
[[nodiscard]] inline Instant deadlineAfter(Instant now, std::chrono::nanoseconds wait) {
  return Instant(checkedSum(now.count(), wait.count(), "a deadline overflows"));
}

/// The same by the wall clock.
[[nodiscard]] inline std::chrono::system_clock::time_point deadlineAfter(
    std::chrono::system_clock::time_point now, std::chrono::system_clock::duration wait) {
  using Wall = std::chrono::system_clock;
  const auto sum = checkedSum(now.time_since_epoch().count(), wait.count(), "a deadline overflows");
  return Wall::time_point(Wall::duration(sum));
}

}  // namespace tamo::platform

#pragma once

#include <string_view>

#include "values/fatal.hpp"

namespace tamo::values {

/// `left` + `right`, which must not wrap: no value of a sane machine comes near the end of its type, so a sum
/// that does not fit stops the process (fatal) with `failure`. Pure otherwise; any thread.
template <class Integer>
[[nodiscard]] Integer checkedSum(Integer left, Integer right, std::string_view failure) {
  Integer sum{};
  if (__builtin_add_overflow(left, right, &sum)) fatal(failure);
  return sum;
}

}  // namespace tamo::values

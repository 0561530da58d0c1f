#pragma once

#include <cstdint>
#include <vector>

namespace tamo::stage {

/// Where a moment stands on a line from left to right. A restart has two seconds of waiting and then all of it within a
/// few milliseconds, so the line is no ruler: every gap between two moments gets a width by the third root of its time,
/// nearly, and some in any case. What is later never stands further left, and within a gap the line is even. Pure.
class TimeScale {
 public:
  /// The moments, in order and each once; two at least. `width` is above 0.
  TimeScale(std::vector<std::int64_t> moments, double width);

  /// From 0 to the width; what lies outside of the moments stands at the nearer end.
  [[nodiscard]] double place(std::int64_t moment) const;

 private:
  std::vector<std::int64_t> moments_;
  std::vector<double> places_;
};

}  // namespace tamo::stage

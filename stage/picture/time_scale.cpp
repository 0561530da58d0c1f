#include "stage/picture/time_scale.hpp"

#include <algorithm>
#include <cmath>

namespace tamo::stage {
namespace {

/// What any gap gets at least, where half a millisecond gets one more. The exponent was chosen by eye: two seconds are
/// not four times as wide as fifty milliseconds, and a millisecond has room for a sign.
constexpr double least = 0.8;
constexpr double unit = 500;
constexpr double flatness = 0.35;

double weight(std::int64_t gap) {
  return least + std::pow(static_cast<double>(gap) / unit, flatness);
}

}  // namespace

TimeScale::TimeScale(std::vector<std::int64_t> moments, double width) : moments_(std::move(moments)) {
  places_.push_back(0);
  for (std::size_t next = 1; next < moments_.size(); ++next)
    places_.push_back(places_.back() + weight(moments_[next] - moments_[next - 1]));
  const auto all = places_.back();
  // Whatever the gaps add up to, the last moment stands at the end of the line.
  for (auto& place : places_)
    place *= width / all;
}

double TimeScale::place(std::int64_t moment) const {
  const auto later = std::ranges::upper_bound(moments_, moment);
  if (later == moments_.begin()) return 0;
  if (later == moments_.end()) return places_.back();
  const auto index = static_cast<std::size_t>(later - moments_.begin());
  const auto share = static_cast<double>(moment - moments_[index - 1]) /
                     static_cast<double>(moments_[index] - moments_[index - 1]);
  return places_[index - 1] + share * (places_[index] - places_[index - 1]);
}

}  // namespace tamo::stage

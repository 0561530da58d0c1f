#include "stage/picture/label_places.hpp"

#include <algorithm>

namespace tamo::stage {

std::optional<double> LabelPlaces::place(double wanted, double textWidth, double slack) {
  const auto last = width_ - textWidth;
  if (last < 0) return std::nullopt;
  std::vector<double> tried = {std::clamp(wanted, 0.0, last)};
  // Right behind those that are there already.
  for (const auto& [from, to] : taken_)
    if (to + gap_ > wanted && to + gap_ <= std::min(wanted + slack, last)) tried.push_back(to + gap_);
  // From left to right, so the place nearest to the wanted one is taken.
  std::ranges::sort(tried);
  for (const auto from : tried) {
    if (!isFree(from, from + textWidth)) continue;
    taken_.emplace_back(from, from + textWidth);
    return from;
  }
  return std::nullopt;
}

bool LabelPlaces::isFree(double from, double to) const {
  return std::ranges::none_of(
      taken_, [&](const auto& other) { return from < other.second + gap_ && other.first < to + gap_; });
}

}  // namespace tamo::stage

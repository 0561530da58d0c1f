#pragma once

#include <optional>
#include <utility>
#include <vector>

namespace tamo::stage {

/// Keeps texts of one line apart: who comes first gets its place, and who would touch another gets none. Pure.
class LabelPlaces {
 public:
  /// The line goes from 0 to `width`; texts keep `gap` between them.
  LabelPlaces(double width, double gap) : width_(width), gap_(gap) {}

  /// Where a text of this width begins that should begin at `wanted`: there, or further left where the line ends, or up
  /// to `slack` further right. Absent when it does not fit.
  [[nodiscard]] std::optional<double> place(double wanted, double textWidth, double slack = 0);

 private:
  [[nodiscard]] bool isFree(double from, double to) const;

  double width_;
  double gap_;
  std::vector<std::pair<double, double>> taken_;
};

}  // namespace tamo::stage

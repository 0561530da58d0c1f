#pragma once

#include <vector>

#include "stage/picture/label_places.hpp"
#include "stage/picture/picture.hpp"
#include "stage/picture/svg_text.hpp"
#include "stage/picture/time_scale.hpp"

/// The chart of a picture in SVG: the ruler, the rows with their spans and marks, and the signals between them. Pure.
namespace tamo::stage {

/// Where the chart lies in the document.
struct ChartPlace {
  double left = 0;
  double width = 0;
  double top = 0;
};

/// Adds the chart and gives its height.
double addChart(SvgText& svg, const Picture& picture, const ChartPlace& place);

/// A sign as the chart has it, for a legend.
void addSign(SvgText& svg, MarkKind kind, double x, double y, const std::string& letter);

/// The width that a text takes at most, in the document's units.
[[nodiscard]] double textWidth(std::string_view text);

}  // namespace tamo::stage

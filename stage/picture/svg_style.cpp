#include "stage/picture/svg_style.hpp"

namespace tamo::stage {
namespace {

/// Without variables: some programs that show SVG know media queries and no more.
constexpr std::string_view styleSheet = R"svg(<style>
  text { font: 11px system-ui, -apple-system, "Segoe UI", "DejaVu Sans", sans-serif; fill: #1f2328 }
  .paper { fill: #ffffff; stroke: #d1d9e0 }
  .band { fill: #f6f8fa }
  .title { font-size: 16px; font-weight: 600 }
  .sum { font-size: 13px; font-weight: 600 }
  .time, .remark, .told .at, .note { fill: #59636e }
  .remark { font-style: italic }
  .guide { stroke: #d1d9e0; stroke-dasharray: 1 3 }
  .life .bar { fill: #d5e3f5; stroke: #4a78b0 }
  .step .bar { fill: #a9d6b6; stroke: #1f6f3c; stroke-width: 1.4 }
  .wait .bar { fill: url(#hatch); stroke: #8a6a00; stroke-dasharray: 4 2 }
  .held .bar { fill: url(#dots); stroke: #6a3fc0 }
  .edge { fill: #4a78b0 }
  .hatched { stroke: #c69a12; stroke-width: 1.6 }
  .dotted { fill: #8a63d8 }
  .end .sign { stroke: #1f2328; stroke-width: 2.4 }
  .killed .sign { stroke: #b3121f; stroke-width: 2.2; fill: none }
  .line .sign { fill: #ffffff; stroke: #1f2328 }
  .alive .sign { fill: #6a4f00 }
  .gone .sign { fill: #ffffff; stroke: #1f2328; stroke-width: 1.4 }
  .moment .sign { fill: #1f2328 }
  .arrow .sign { stroke: #9a5b00; stroke-width: 1.4; stroke-dasharray: 5 2 }
  .arrow .head, .arrow text { fill: #9a5b00; font-weight: 600 }
  .arrow.SIGKILL .sign { stroke: #b3121f; stroke-width: 2; stroke-dasharray: none }
  .arrow.SIGKILL .head, .arrow.SIGKILL text { fill: #b3121f }
  @media (prefers-color-scheme: dark) {
    text { fill: #e6edf3 }
    .paper { fill: #0d1117; stroke: #3d444d }
    .band { fill: #151b23 }
    .time, .remark, .told .at, .note { fill: #9da7b3 }
    .guide { stroke: #3d444d }
    .life .bar { fill: #1c3553; stroke: #79a8de }
    .step .bar { fill: #1d5a35; stroke: #7fd09a }
    .wait .bar { stroke: #d9b13b }
    .held .bar { stroke: #b79bf2 }
    .edge { fill: #79a8de }
    .hatched { stroke: #b58a14 }
    .dotted { fill: #a78be8 }
    .end .sign { stroke: #e6edf3 }
    .killed .sign { stroke: #ff8a82 }
    .line .sign { fill: #0d1117; stroke: #e6edf3 }
    .alive .sign { fill: #ffdf80 }
    .gone .sign { fill: #0d1117; stroke: #e6edf3 }
    .moment .sign { fill: #e6edf3 }
    .arrow .sign { stroke: #f0b35a }
    .arrow .head, .arrow text { fill: #f0b35a }
    .arrow.SIGKILL .sign { stroke: #ff8a82 }
    .arrow.SIGKILL .head, .arrow.SIGKILL text { fill: #ff8a82 }
  }
</style>
)svg";

/// A wait and a held lock are told apart by these where colours are not seen.
constexpr std::string_view drawnPatterns = R"svg(<defs>
  <pattern id="hatch" width="6" height="6" patternUnits="userSpaceOnUse" patternTransform="rotate(45)">
    <line class="hatched" x1="0" y1="0" x2="0" y2="6"/>
  </pattern>
  <pattern id="dots" width="5" height="5" patternUnits="userSpaceOnUse">
    <circle class="dotted" cx="2.5" cy="2.5" r="1.1"/>
  </pattern>
</defs>
)svg";

}  // namespace

std::string_view svgStyle() {
  return styleSheet;
}

std::string_view svgDefinitions() {
  return drawnPatterns;
}

}  // namespace tamo::stage

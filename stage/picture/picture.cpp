#include "stage/picture/picture.hpp"

#include <algorithm>

namespace tamo::stage {

/// In whole numbers, because a quotient would be rounded, up as well as down.
std::string secondsText(std::int64_t microseconds, int places) {
  std::int64_t unit = 1'000'000;
  for (int place = 0; place < places; ++place)
    unit /= 10;
  const auto count = microseconds / unit;
  const auto whole = microseconds / 1'000'000;
  auto rest = std::to_string(count - whole * (1'000'000 / unit));
  while (rest.size() < static_cast<std::size_t>(places))
    rest.insert(rest.begin(), '0');
  return std::to_string(whole) + "." + rest + " s";
}

std::vector<std::int64_t> shownMoments(const Picture& picture) {
  std::vector<std::int64_t> moments = {0, picture.until};
  for (const auto& row : picture.rows) {
    for (const auto& span : row.spans)
      moments.insert(moments.end(), {span.from, span.until});
    for (const auto& mark : row.marks)
      // Looks follow each other so closely that they would take the width from everything else.
      if (mark.kind != MarkKind::Alive && mark.kind != MarkKind::Gone) moments.push_back(mark.at);
  }
  for (const auto& arrow : picture.arrows)
    moments.push_back(arrow.at);
  std::ranges::sort(moments);
  const auto doubles = std::ranges::unique(moments);
  moments.erase(doubles.begin(), doubles.end());
  return moments;
}

}  // namespace tamo::stage

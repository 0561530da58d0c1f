#include "acceptance/mac/unified_log.hpp"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "support/json_line.hpp"
#include "support/moment.hpp"

namespace tamo::acceptance {
namespace {

Level levelOf(const std::string& type) {
  if (type == "Default") return Level::Default;
  return type == "Error" ? Level::Error : Level::Other;
}

}  // namespace

std::optional<Line> lineOfUnifiedLog(std::string_view object) {
  const auto fields = support::logObject(object);
  if (!fields || !fields->message) return std::nullopt;
  std::string_view time = fields->timestamp;
  const auto at = support::takeMoment(time);
  if (!at || !at->zoneMinutes) return std::nullopt;
  return Line{.time = at->micros(),
              .pid = std::atoi(fields->process.c_str()),
              .level = levelOf(fields->type),
              .text = *fields->message,
              .marks = marksOfFormat(fields->format)};
}

namespace {

/// Behind those of its moment and before all later ones; nearly always that is the end.
void place(std::vector<Line>& lines, Line line) {
  const auto later = std::ranges::upper_bound(lines, line.time, {}, &Line::time);
  lines.insert(later, std::move(line));
}

}  // namespace

std::vector<Line> linesOfUnifiedLog(std::string_view text) {
  std::vector<Line> lines;
  while (!text.empty()) {
    const auto end = std::min(text.find('\n'), text.size());
    if (auto line = lineOfUnifiedLog(text.substr(0, end))) place(lines, *std::move(line));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

}  // namespace tamo::acceptance

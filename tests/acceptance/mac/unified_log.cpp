#include "acceptance/mac/unified_log.hpp"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "acceptance/mac/json_fields.hpp"
#include "platform/log_text.hpp"

namespace tamo::acceptance {
namespace {

using namespace std::chrono;

Level levelOf(const std::string& type) {
  if (type == "Default") return Level::Default;
  return type == "Error" ? Level::Error : Level::Other;
}

}  // namespace

std::optional<std::int64_t> unifiedTime(const std::string& text) {
  int y = 0;
  unsigned mon = 0;
  unsigned d = 0;
  int h = 0;
  int min = 0;
  int s = 0;
  int micros = 0;
  char sign = ' ';
  int zone = 0;
  const int read = std::sscanf(text.c_str(), "%d-%u-%u %d:%d:%d.%6d%c%4d", &y, &mon, &d, &h, &min, &s,
                               &micros, &sign, &zone);
  if (read != 9 || (sign != '+' && sign != '-')) return std::nullopt;
  const auto offset = (hours(zone / 100) + minutes(zone % 100)) * (sign == '-' ? -1 : 1);
  const sys_days date = year(y) / month(mon) / day(d);
  const auto time =
      date.time_since_epoch() + hours(h) + minutes(min) + seconds(s) + microseconds(micros) - offset;
  return duration_cast<microseconds>(time).count();
}

std::optional<Line> lineOfUnifiedLog(std::string_view object) {
  auto fields = jsonFields(object);
  if (!fields || !fields->contains("eventMessage")) return std::nullopt;
  const auto time = unifiedTime((*fields)["timestamp"]);
  if (!time) return std::nullopt;
  return Line{.time = *time,
              .pid = std::atoi((*fields)["processID"].c_str()),
              .level = levelOf((*fields)["messageType"]),
              .text = (*fields)["eventMessage"],
              .marks = marksOfFormat((*fields)["formatString"])};
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

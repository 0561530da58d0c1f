#include "acceptance/stage/stage_evidence.hpp"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <thread>

#include "stage/common/words.hpp"
#include "support/moment.hpp"
#include "values/escaped_text.hpp"

namespace tamo::acceptance {
namespace {

using namespace std::chrono;

std::vector<Mark> marksOfColumn(std::string_view column) {
  std::vector<Mark> marks;
  for (std::size_t at = 0; at < column.size(); ++at) {
    if (column[at] == '\\') {
      ++at;
    } else if (column[at] == '{') {
      marks.push_back(column.substr(at).starts_with("{public") ? Mark::Public : Mark::Private);
    }
  }
  return marks;
}

}  // namespace

std::optional<Line> lineOfStage(std::string_view columns) {
  const auto parts = stage::split(columns, '\t');
  if (parts.size() != 7) return std::nullopt;
  auto time = parts[0];
  const auto at = support::takeMoment(time);
  if (!at) return std::nullopt;
  return Line{.time = at->micros(),
              .pid = std::atoi(std::string(parts[1]).c_str()),
              .level = parts[2] == "error" ? Level::Error : Level::Default,
              .text = values::unescaped(parts[5]),
              .marks = marksOfColumn(parts[6])};
}

/// As coarse as the log's times.
std::int64_t StageEvidence::now() {
  // A line of what has just ended may bear the same millisecond.
  std::this_thread::sleep_for(milliseconds(2));
  return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count() * 1000;
}

/// A companion's lines are in the file before it ends, so nothing has to be waited for.
std::vector<Line> StageEvidence::lines(std::int64_t since, std::size_t endings) {
  std::vector<Line> found;
  for (int look = 0; look < 500; ++look) {
    found.clear();
    std::ifstream log(root_.control("log"));
    for (std::string text; std::getline(log, text);) {
      auto line = lineOfStage(text);
      if (line && line->time >= since) found.push_back(*std::move(line));
    }
    const auto ended = std::ranges::count_if(found, endsAction);
    const bool everybodyIsDone = endings <= 1 && companions_.allEnded();
    if (static_cast<std::size_t>(ended) >= endings || everybodyIsDone) break;
    std::this_thread::sleep_for(milliseconds(10));
  }
  return found;
}

std::vector<std::string> StageEvidence::crashes(std::int64_t) {
  return companions_.crashes();
}

}  // namespace tamo::acceptance

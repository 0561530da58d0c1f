#include "exhaustion/print_description.hpp"

#include <algorithm>

namespace tamo::exhaustion {
namespace {

/// How many blocks stand open before each line.
std::vector<std::int64_t> depths(Print print) {
  std::vector<std::int64_t> result;
  std::int64_t depth = 0;
  for (const auto& line : print) {
    result.push_back(depth);
    depth += line.opens ? 1 : 0;
    depth -= line.closes ? 1 : 0;
  }
  return result;
}

/// The job's own block of arguments: the first line within it, and the line that closes it. Without one, both
/// are the number of lines; without an end, the second is.
struct Block {
  std::size_t first;
  std::size_t close;
};

Block argumentsBlock(Print print) {
  const auto depth = depths(print);
  for (std::size_t at = 0; at < print.size(); ++at) {
    if (!print[at].beginsArguments || depth[at] != 1) continue;
    const auto inside = print.subspan(at + 1);
    const auto close =
        std::find_if(inside.begin(), inside.end(), [](const Line& line) { return line.closes; });
    return {.first = at + 1, .close = at + 1 + static_cast<std::size_t>(close - inside.begin())};
  }
  return {.first = print.size(), .close = print.size()};
}

/// The last line of the job's own block that names a timeout says what it is, even if it says nothing.
std::optional<std::int64_t> timeout(Print print) {
  const auto depth = depths(print);
  for (auto at = print.size(); at-- > 0;) {
    const auto& line = print[at];
    if (depth[at] == 1 && line.namesTimeout && !line.opens) return line.timeout;
  }
  return std::nullopt;
}

/// The line behind the block that a line opens, blocks within it taken as wholes; the end of the print for a block
/// that is not closed.
std::size_t behindBlock(Print print, std::size_t opener) {
  auto at = opener + 1;
  while (at < print.size() && !print[at].closes)
    at = print[at].opensAnything ? behindBlock(print, at) : at + 1;
  return std::min(at + 1, print.size());
}

}  // namespace

std::vector<std::size_t> describedKept(Print print) {
  std::vector<std::size_t> kept;
  for (std::size_t at = 0; at < print.size();) {
    if (print[at].opensQuoted) {
      at = behindBlock(print, at);
    } else {
      kept.push_back(at++);
    }
  }
  return kept;
}

bool describedRunning(Print print) {
  return std::any_of(print.begin(), print.end(), [](const Line& line) { return line.namesPid; });
}

std::optional<std::int32_t> describedPid(Print print) {
  const auto depth = depths(print);
  for (std::size_t at = 0; at < print.size(); ++at)
    if (depth[at] == 1 && !print[at].opens && print[at].pid) return print[at].pid;
  return std::nullopt;
}

std::optional<DescribedDefinition> describedDefinition(Print print) {
  const auto block = argumentsBlock(print);
  if (block.first >= block.close || block.close == print.size()) return std::nullopt;
  // What stands in the block is arguments and nothing else, so it is cut out before the rest is looked at.
  std::vector<Line> rest(print.begin(), print.end());
  const auto from = rest.begin() + static_cast<std::ptrdiff_t>(block.first);
  DescribedDefinition definition;
  for (auto line = from; line != rest.begin() + static_cast<std::ptrdiff_t>(block.close); ++line)
    definition.arguments.push_back(line->stripped);
  rest.erase(from, rest.begin() + static_cast<std::ptrdiff_t>(block.close));
  definition.exitTimeout = timeout(rest);
  return definition;
}

}  // namespace tamo::exhaustion

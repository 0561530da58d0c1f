#include "launch/print_reading.hpp"

#include <cstddef>
#include <string_view>

#include "values/text.hpp"

namespace tamo {
namespace {

/// At any depth, unlike the pid of a hard stop: nobody is signalled by it, and a pid anywhere means that
/// something runs.
bool hasPidLine(std::string_view text) {
  std::optional rest(text);
  while (rest) {
    const auto line = values::takeLine(rest);
    if (values::trimmed(line).starts_with("pid = ")) return true;
  }
  return false;
}

/// So macOS 26 opens the dictionaries of the launch constraint that it prints in front of the pid.
constexpr std::string_view quotedOpener = "\" => {";

/// How many blocks are open behind a line, of a quoted block and those within it; none outside of one.
std::size_t openBehind(std::string_view line, std::size_t open) {
  if (open == 0) return line.starts_with('"') && line.ends_with(quotedOpener) ? 1 : 0;
  if (line == "}") return open - 1;
  return line.ends_with('{') ? open + 1 : open;
}

}  // namespace

/// Every doubt counts as a yes: a no leads to a reseat, which would interrupt a Core that runs. A no is
/// launchctl's own status for a job that is not loaded, and a whole print without a pid.
bool jobRunning(const std::optional<PrintResult>& print) {
  if (!print) return true;
  if (print->code != 0) return print->code != jobNotFound;
  return !print->text || hasPidLine(*print->text);
}

/// Most prints have none, and come back as they are.
std::string withoutQuotedBlocks(std::string text) {
  if (!text.contains(quotedOpener)) return text;
  std::string kept;
  std::size_t open = 0;
  std::optional<std::string_view> rest(text);
  while (rest) {
    const auto line = values::takeLine(rest);
    const bool within = open > 0;
    open = openBehind(values::trimmed(line), open);
    if (within || open > 0) continue;
    kept.append(line);
    if (rest) kept += '\n';
  }
  return kept;
}

}  // namespace tamo

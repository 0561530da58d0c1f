#include "hardstop/process_snapshot.hpp"

#include "values/checked_sum.hpp"
#include "values/fatal.hpp"
#include "values/text.hpp"

namespace tamo::HardStop {
namespace {

constexpr std::uint64_t microsPerSecond = 1'000'000;
/// 0 would be the caller's own group to a signal, and 1 is launchd.
constexpr std::int32_t lowestJobPid = 2;
constexpr std::string_view pidKey = "pid = ";

/// A sum that wrapped would give one process the identity of another.
std::uint64_t microsOf(const platform::ProcessInfo& info) {
  std::uint64_t micros = 0;
  if (__builtin_mul_overflow(info.startSeconds, microsPerSecond, &micros)) {
    values::fatal("the seconds of a start time overflow as microseconds");
  }
  return values::checkedSum(micros, info.startMicroseconds, "a start time overflows");
}

/// A depth that wrapped would come back to where a pid is believed. Below zero it may go: a print that closes
/// more than it opened is outside of every block from then on.
std::int64_t deeper(std::int64_t depth, std::int64_t by) {
  return values::checkedSum(depth, by, "the depth of a print overflows");
}

/// A line with another number is passed over, and the next one is looked at.
std::optional<std::int32_t> pidOfLine(std::string_view line) {
  if (!line.starts_with(pidKey)) return std::nullopt;
  const auto value = values::decimalInt32(line.substr(pidKey.size()));
  return value && *value >= lowestJobPid ? value : std::nullopt;
}

}  // namespace

std::optional<Seen> kernel(const platform::KernelProcesses& processes, std::int32_t pid) {
  const auto info = processes.info(pid);
  if (!info) return std::nullopt;
  return Seen{.pid = pid, .startMicros = microsOf(*info), .group = info->group, .zombie = info->zombie};
}

/// A zombie has run to its end and waits for its parent only: a signal would reach nothing.
bool alive(const Seen& earlier, const std::optional<Seen>& later) {
  return later && !later->zombie && later->startMicros == earlier.startMicros;
}

std::optional<std::int32_t> pid(std::string_view fromPrint) {
  std::int64_t depth = 0;
  std::optional rest = fromPrint;
  while (rest) {
    const auto line = values::trimmed(values::takeLine(rest));
    if (line.ends_with("= {")) {
      depth = deeper(depth, 1);
    } else if (line == "}") {
      depth = deeper(depth, -1);
    } else if (depth == 1) {
      if (const auto found = pidOfLine(line)) return found;
    }
  }
  return std::nullopt;
}

}  // namespace tamo::HardStop

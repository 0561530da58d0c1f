#include "simulation/process_table.hpp"

#include <algorithm>

namespace tamo::simulation {
namespace {

constexpr std::int32_t pids = 40;
/// The start of the run, in microseconds of the wall clock, which start times are told by.
constexpr std::uint64_t bootMicros = 1'700'000'000'000'000;

}  // namespace

Process* ProcessTable::find(std::int32_t pid) {
  const auto found = std::find_if(processes_.begin(), processes_.end(),
                                  [pid](const Process& process) { return process.pid == pid; });
  return found == processes_.end() ? nullptr : &*found;
}

Process* ProcessTable::find(std::int32_t pid, std::uint64_t startMicros) {
  auto* found = find(pid);
  return found != nullptr && found->startMicros == startMicros ? found : nullptr;
}

bool ProcessTable::isFree(std::int32_t pid) const {
  return std::none_of(processes_.begin(), processes_.end(),
                      [pid](const Process& process) { return process.pid == pid || process.group == pid; });
}

std::int32_t ProcessTable::freePid() {
  if (lastFreed_ != 0 && isFree(lastFreed_) && dice_.chance(600)) return lastFreed_;
  auto pid = lowestPid + static_cast<std::int32_t>(dice_.below(pids));
  while (!isFree(pid))
    pid = pid + 1 < lowestPid + 2 * pids ? pid + 1 : lowestPid;
  return pid;
}

/// The first microsecond from `wall` on in which none has started yet.
std::uint64_t ProcessTable::freeStart(Time wall) const {
  const auto micros = std::chrono::duration_cast<std::chrono::microseconds>(wall).count();
  auto start = bootMicros + static_cast<std::uint64_t>(micros);
  while (std::find(starts_.begin(), starts_.end(), start) != starts_.end())
    ++start;
  return start;
}

const Process& ProcessTable::add(std::int32_t pid, ProcessKind kind, Time wall, std::int32_t group) {
  starts_.push_back(freeStart(wall));
  processes_.push_back({.pid = pid,
                        .group = group,
                        .startMicros = starts_.back(),
                        .number = starts_.size(),
                        .zombie = false,
                        .kind = kind});
  return processes_.back();
}

const Process& ProcessTable::spawn(ProcessKind kind, Time wall, std::optional<std::int32_t> group) {
  const auto pid = freePid();
  return add(pid, kind, wall, group.value_or(pid));
}

const Process& ProcessTable::spawnAs(std::int32_t pid, ProcessKind kind, Time wall) {
  return add(pid, kind, wall, pid);
}

void ProcessTable::remove(std::int32_t pid) {
  const auto gone = std::erase_if(processes_, [pid](const Process& process) { return process.pid == pid; });
  if (gone > 0) lastFreed_ = pid;
}

}  // namespace tamo::simulation

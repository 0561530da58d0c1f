#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "simulation/dice.hpp"

namespace tamo::simulation {

enum class ProcessKind { Launchd, Companion, Core, Helper, Stranger };

struct Process {
  std::int32_t pid = 0;
  std::int32_t group = 0;
  /// By the wall clock as it was then. No two are equal, so that pid and start name one process.
  std::uint64_t startMicros = 0;
  /// The how-manieth process of the run it is, whatever a clock said.
  std::uint64_t number = 0;
  bool zombie = false;
  ProcessKind kind = ProcessKind::Stranger;
};

/// The processes of the played Mac. There are few pids, and one that was just freed is often the next to be
/// used, so that a pid is met again under another process all the time.
class ProcessTable {
 public:
  static constexpr std::int32_t lowestPid = 100;

  explicit ProcessTable(Dice& dice) : dice_(dice) {}

  /// A new process at that time of the wall clock; in a group of its own unless `group` is given.
  const Process& spawn(ProcessKind kind, Time wall, std::optional<std::int32_t> group = std::nullopt);
  /// The same under a certain pid, which is free.
  const Process& spawnAs(std::int32_t pid, ProcessKind kind, Time wall);

  /// Null when there is none.
  [[nodiscard]] Process* find(std::int32_t pid);
  /// The process of a pid that started then; null when it is gone.
  [[nodiscard]] Process* find(std::int32_t pid, std::uint64_t startMicros);
  /// Free, and no group's name either.
  [[nodiscard]] bool isFree(std::int32_t pid) const;
  void remove(std::int32_t pid);
  [[nodiscard]] const std::vector<Process>& all() const { return processes_; }

 private:
  [[nodiscard]] std::int32_t freePid();
  const Process& add(std::int32_t pid, ProcessKind kind, Time wall, std::int32_t group);
  [[nodiscard]] std::uint64_t freeStart(Time wall) const;

  Dice& dice_;
  std::vector<Process> processes_;
  std::int32_t lastFreed_ = 0;
  std::vector<std::uint64_t> starts_;
};

}  // namespace tamo::simulation

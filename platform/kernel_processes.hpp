#pragma once

#include <cstdint>
#include <optional>

namespace tamo::platform {

/// The kernel's record of one process.
struct ProcessInfo {
  /// Start time, fixed for the life of the process and different for two processes that use a pid one after
  /// the other. On macOS it counts from the Unix epoch; elsewhere the origin may differ, but is the same for
  /// all processes.
  std::uint64_t startSeconds = 0;
  std::uint64_t startMicroseconds = 0;
  std::int32_t group = 0;
  /// Exited and waiting to be reaped.
  bool zombie = false;
};

/// The kernel's view of processes, and the one signal that the system sends. Any thread.
class KernelProcesses {
 public:
  virtual ~KernelProcesses() = default;

  /// Absent when there is no such process, when it may not be asked about, and on every other failure.
  [[nodiscard]] virtual std::optional<ProcessInfo> info(std::int32_t pid) const = 0;

  [[nodiscard]] virtual std::int32_t ownPid() const = 0;
  [[nodiscard]] virtual std::int32_t ownGroup() const = 0;

  /// Sends SIGKILL to one process. A failure is not told: only a later look shows what became of the process.
  virtual void kill(std::int32_t pid) = 0;

  /// Sends SIGKILL to every process of a group. A failure is not told.
  virtual void killGroup(std::int32_t group) = 0;
};

}  // namespace tamo::platform

#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/posix/descriptor.hpp"
#include "platform/posix/posix_kernel_processes.hpp"

namespace tamo::stage {

/// The fields of "/proc/PID/stat" that a snapshot needs.
struct ProcStat {
  char state = '?';
  std::int32_t group = 0;
  /// Since the machine was started, in clock ticks.
  std::uint64_t startTicks = 0;
};

/// Reads the line of a process. Its second field is the program's name in parentheses and may hold anything,
/// spaces and parentheses too, so the counting begins after the last ")". Absent for any other text.
[[nodiscard]] std::optional<ProcStat> procStat(std::string_view line);

/// The processes of this machine, as the kernel's process files tell them. A look opens and closes one file
/// and one process descriptor.
///
/// Known differences from a Mac: start times count from the start of the machine, never from the wall clock,
/// which can be set; their resolution is one tick (10 ms), and the part below it is no time but a number that
/// the kernel gives every process once, so two processes that use one pid within a tick still differ. On a
/// kernel without that number (before 6.9) they would not. Processes of other users can be looked at, and
/// kernel threads count as processes.
class StageKernelProcesses final : public platform::PosixKernelProcesses {
 public:
  StageKernelProcesses();

  [[nodiscard]] std::optional<platform::ProcessInfo> info(std::int32_t pid) const override;

 private:
  std::uint64_t microsecondsPerTick_;
  enum class Numbering : std::uint8_t { Unknown, Absent, Present };
  /// The machine's for as long as it runs, so it is asked for once, by the first look. Who looks at the same time finds
  /// the same.
  [[nodiscard]] bool numbers(const platform::Descriptor& process) const;

  mutable std::atomic<Numbering> numbering_ = Numbering::Unknown;
};

}  // namespace tamo::stage

#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/kernel_processes.hpp"

/// How a hard stop knows which process it is looking at. A pid can be freed and handed to another process
/// while a stop is under way, and a process that has died keeps its pid until it is reaped; so a process is
/// its pid together with its start time. What to do about the process is decided elsewhere.
namespace tamo::HardStop {

/// One look at a process. `pid` and `startMicros` are its identity; the group may change while it lives.
struct Seen {
  std::int32_t pid = 0;
  /// Microseconds from an origin that is the same for all processes: the Unix epoch on macOS.
  std::uint64_t startMicros = 0;
  std::int32_t group = 0;
  /// Exited and waiting to be reaped.
  bool zombie = false;

  bool operator==(const Seen&) const = default;
};

/// A fresh look at `pid`. Absent when there is no such process and just as well when it may not be asked
/// about or the kernel fails: all of these count as gone. Any thread. A start time that does not fit
/// `startMicros` stops the process (fatal).
[[nodiscard]] std::optional<Seen> kernel(const platform::KernelProcesses& processes, std::int32_t pid);

/// Whether `later`, a look at the pid of `earlier`, still shows the same process and shows it living. Pids
/// are not compared, and a changed group does not make it another process.
[[nodiscard]] bool alive(const Seen& earlier, const std::optional<Seen>& later);

/// The pid of the job's running process in the text that `launchctl print` gives for the job: the first
/// acceptable line "pid = N" directly inside the outermost block. Absent without one. Never less than 2, so
/// that neither the kernel nor launchd can come to be signalled, whatever the text says.
///
/// A block opens with a line that ends in "= {" and closes with a line "}". A block that opens with "=> {" is
/// not seen to open, while its "}" is seen to close, so a pid behind it would be missed: whoever has a print
/// leaves the blocks of that kind out first that newer systems print before the pid.
[[nodiscard]] std::optional<std::int32_t> pid(std::string_view fromPrint);

}  // namespace tamo::HardStop

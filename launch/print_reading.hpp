#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// What launchctl's print of the Core's job tells about a running process. Pure functions of the print; any
/// thread.
namespace tamo {

/// One launchctl print that was captured. Where the capture could not even be set up there is no PrintResult
/// at all.
struct PrintResult {
  /// The exit status of launchctl, or -1 when it could not be started or did not finish in time.
  std::int32_t code = 0;
  /// What it printed; absent when that could not be read back as UTF-8.
  std::optional<std::string> text;
};

/// launchctl's exit status for a job that is not loaded in the domain.
inline constexpr std::int32_t jobNotFound = 113;

/// Whether the job runs a process, or must be assumed to. Every doubt (no capture, a launchctl that failed or
/// timed out, an unreadable text) counts as running, because callers start or replace the job on a false
/// answer; only `jobNotFound` and a readable print without a pid line say false.
///
/// A pid line counts at any block depth and whatever its value is, which is meant to be looser than the
/// reading of the pid that a hard stop needs.
[[nodiscard]] bool jobRunning(const std::optional<PrintResult>& print);

}  // namespace tamo

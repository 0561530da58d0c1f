#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// What launchctl's print of the Core's job tells about a running process, and what is left out of it before
/// the readers that count blocks see it. Pure functions of the print; any thread.
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

/// A print without its blocks of dictionaries, whose keys stand in quotes: the readers that count blocks
/// (HardStop::pid, LaunchJob::loaded) would count only their ends. macOS 26 and 27 print them before the exit
/// timeout and the pid, in the launch constraint that every job of service management has (recorded prints;
/// older systems print them behind the pid, among the event triggers):
///
///     LWCR = {
///         "reqs" => {
///             "team-identifier" => "ABCDE12345"
///         }
///         "vers" => 1
///     }
///
/// A line that begins with a double quote and ends in `" => {` opens such a block. It is left out with
/// everything in it and the "}" that closes it; within it every line that ends in "{" opens a block, every
/// line "}" closes one. A block that is not closed leaves out all that follows, so that no pid is seen rather
/// than a wrong one. What remains is as it was, byte for byte and in its order.
///
/// Time is linear in the text; a text without such a line is handed back without a copy.
[[nodiscard]] std::string withoutQuotedBlocks(std::string text);

}  // namespace tamo

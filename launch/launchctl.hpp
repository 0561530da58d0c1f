#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "launch/print_reading.hpp"
#include "platform/clock.hpp"
#include "platform/files.hpp"
#include "platform/kernel_processes.hpp"
#include "platform/processes.hpp"
#include "platform/user.hpp"

namespace tamo {

/// The way to launchd: "/bin/launchctl" on the Core's job in the user's GUI domain. Every operation blocks
/// the calling thread, for about 5 seconds at most, and folds each failure into its result. No state is kept
/// between calls, so repeating one is harmless to this class. One thread.
class Launchctl {
 public:
  /// What the operations need. The references must outlive the Launchctl.
  struct Needs {
    platform::Processes& processes;
    platform::Files& files;
    platform::Clock& clock;
    const platform::KernelProcesses& kernelProcesses;
    const platform::User& user;
    /// The launchd label of the job.
    std::string label;
  };

  /// How a job is kickstarted.
  struct Kickstart {
    /// Whether a running process of the job is killed first ("-k"); without it launchd leaves it alone.
    bool kill = false;
  };

  explicit Launchctl(Needs needs) : needs_(std::move(needs)) {}

  /// "gui/", the real user id in decimal, "/", the label. Built afresh at each call.
  [[nodiscard]] std::string jobTarget() const;

  /// Runs launchctl with its standard output going to the open descriptor `output`, or discarded when that is
  /// -1. Gives the exit status, or -1 when launchctl could not be started or had to be asked to terminate
  /// after 5 seconds; it may then still be running.
  [[nodiscard]] std::int32_t launchctl(const std::vector<std::string>& arguments, int output);

  /// Prints the job, by way of a file in the temporary directory that is gone when this returns. Absent when
  /// the capture could not be set up; a launchctl that failed is a print with its code.
  [[nodiscard]] std::optional<PrintResult> printJob();

  /// Whether the job runs a process, or must be assumed to; see jobRunning(print).
  [[nodiscard]] bool jobRunning();

  /// Starts the job now. Gives what launchctl() gives; a status that is not 0 is a value like any other.
  [[nodiscard]] std::int32_t kickstart(Kickstart how);

 private:
  Needs needs_;
};

}  // namespace tamo

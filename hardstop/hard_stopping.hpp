#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "hardstop/stop_outcome.hpp"
#include "platform/bundles.hpp"
#include "platform/clock.hpp"
#include "platform/files.hpp"
#include "platform/kernel_processes.hpp"
#include "platform/log.hpp"
#include "platform/main_queue.hpp"
#include "platform/task.hpp"
#include "platform/threads.hpp"

namespace tamo {

/// Wraps an operation that asks the Core to stop and makes sure that the Core's process really goes: while
/// the operation runs, a watcher on a thread of its own carries out a hard stop on that process. What the
/// operation asks, and how, is its own business.
///
/// Main thread only. The object outlives every task that it gives.
class HardStopping {
 public:
  /// The references outlive the process's last hard stop: a watcher's thread uses them too.
  struct Needs {
    platform::KernelProcesses& kernelProcesses;
    platform::Threads& threads;
    const platform::FileReader& files;
    const platform::Bundles& bundles;
    platform::Clock& clock;
    platform::MainQueue& mainQueue;
    platform::Logger& log;
    /// The text of `launchctl print` for the Core's job, asked afresh, without what hides the pid from
    /// HardStop::pid; absent without a print or a text. Any text counts, whatever launchctl's exit code was.
    std::function<std::optional<std::string>()> printedJob;
    /// The product's data directory with a "/" at its end; absent when there is none.
    std::function<std::optional<std::string>()> dataDirectory;
  };

  explicit HardStopping(Needs needs);

  /// Runs `operation` under a hard stop and gives its result or raises its error, unchanged, once both the
  /// operation and the watcher are done; the outcome has been noted by then. The main thread is suspended
  /// meanwhile, not blocked, for about 22 seconds beyond the operation at most.
  ///
  /// `asked` tells whether a result means that the Core was in fact asked to stop. It must be a pure
  /// function: it is evaluated twice for a result and never for an error. When it says no, or the operation
  /// fails, the watcher is called off, which counts as long as it has not yet decided to kill or to spare.
  ///
  /// Without a running Core process to be found, or a thread for the watcher, the operation runs alone:
  /// nothing is watched, noted or logged, and `asked` is not evaluated. T is platform::Nothing or
  /// std::int32_t.
  template <class T>
  [[nodiscard]] platform::Task<T> hardStopping(std::function<platform::Task<T>()> operation,
                                               std::function<bool(const T&)> asked);

  /// Keeps the outcome's text in hardStop(), with " stopFailed" behind it when `stopFailed`, and logs it
  /// without.
  void note(const HardStop::Outcome& outcome, std::int32_t pid, bool stopFailed);

  /// The text of the last hard stop that was noted; absent before the first.
  [[nodiscard]] const std::optional<std::string>& hardStop() const { return hardStop_; }

 private:
  Needs needs_;
  std::optional<std::string> hardStop_;
};

}  // namespace tamo

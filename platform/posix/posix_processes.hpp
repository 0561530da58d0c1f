#pragma once

#include <functional>
#include <sys/types.h>

#include "platform/processes.hpp"

namespace tamo::platform {

/// Children that nobody waits for any longer. Each is reaped some time after its exit, at the next occasion.
class Leftovers {
 public:
  void add(pid_t child) { children_.push_back(child); }
  /// Reaps the ones that have exited, without waiting for the others.
  void reap();

 private:
  std::vector<pid_t> children_;
};

/// Tools started with posix_spawn: each leads a process group of its own, with no signal blocked or ignored
/// and with this process's environment and working directory. The exit of a child should stay unseen by the
/// rest of the process: the status of one that somebody else waited for, or that a SIGCHLD which is ignored
/// took away, is -1.
class PosixProcesses final : public Processes {
 public:
  /// Makes SIGCHLD what it is by default: a process that inherited it ignored would never learn a status.
  PosixProcesses();

  /// The tools it gives must not outlive it.
  [[nodiscard]] std::unique_ptr<Tool> start(const ToolLaunch& launch) override;

  /// As start(), when the executable lies elsewhere than its path says; argument zero is still that path. `started`
  /// is told the pid of a tool that runs.
  [[nodiscard]] std::unique_ptr<Tool> start(const ToolLaunch& launch, const std::string& executable,
                                            const std::function<void(pid_t)>& started = {});

 private:
  Leftovers leftovers_;
};

}  // namespace tamo::platform

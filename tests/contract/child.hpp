#pragma once

#include <csignal>
#include <fstream>
#include <functional>
#include <memory>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/posix/descriptor.hpp"

namespace tamo::contract {

/// The exit status in what waiting gave. The macro takes the address of its argument on a Mac, so it cannot
/// be asked of a call's result.
[[nodiscard]] inline int exitStatus(int waited) {
  return WEXITSTATUS(waited);
}

/// A child process of a test that does some work and then exits with status 0. Destroying it kills and reaps
/// it; should the test itself die, the child ends after a minute.
class Child {
 public:
  explicit Child(const std::function<void()>& work) : pid_(::fork()) {
    if (pid_ != 0) return;
    ::alarm(60);
    work();
    ::_exit(0);
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() {
    if (pid_ <= 0) return;
    ::kill(pid_, SIGKILL);
    static_cast<void>(reap());
  }

  [[nodiscard]] pid_t pid() const { return pid_; }

  /// Waits until it has exited, but leaves it a zombie.
  void awaitExit() const {
    siginfo_t ignored{};
    ::waitid(P_PID, static_cast<id_t>(pid_), &ignored, WEXITED | WNOWAIT);
  }
  /// Waits for the exit and takes the status; the pid is free afterwards.
  int reap() {
    int status = 0;
    platform::uninterrupted([&] { return ::waitpid(pid_, &status, 0); });
    pid_ = -1;
    return status;
  }

 private:
  pid_t pid_;
};

/// Makes the kernel give a child the pid of an ended process, which must be reaped. Null when this host does
/// not let a test choose pids, or when somebody else was faster.
inline std::unique_ptr<Child> childWithPid(pid_t pid) {
  for (int attempt = 0; attempt < 50; ++attempt) {
    std::ofstream chooser("/proc/sys/kernel/ns_last_pid");
    if (!(chooser << pid - 1).flush()) return nullptr;
    auto child = std::make_unique<Child>([] { ::pause(); });
    if (child->pid() == pid) return child;
  }
  return nullptr;
}

/// What a child does that only has to be there.
inline void sleepUntilKilled() {
  for (;;)
    ::pause();
}

}  // namespace tamo::contract

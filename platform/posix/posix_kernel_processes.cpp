#include "platform/posix/posix_kernel_processes.hpp"

#include <csignal>
#include <unistd.h>

namespace tamo::platform {

std::int32_t PosixKernelProcesses::ownPid() const {
  return ::getpid();
}

std::int32_t PosixKernelProcesses::ownGroup() const {
  return ::getpgrp();
}

/// A process that is gone by now is what was wanted, so the answer is not looked at.
void PosixKernelProcesses::kill(std::int32_t pid) {
  static_cast<void>(::kill(pid, SIGKILL));
}

void PosixKernelProcesses::killGroup(std::int32_t group) {
  static_cast<void>(::killpg(group, SIGKILL));
}

}  // namespace tamo::platform

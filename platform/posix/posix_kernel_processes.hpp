#pragma once

#include "platform/kernel_processes.hpp"

namespace tamo::platform {

/// What every POSIX kernel is asked and told in the same words. How it tells of a process is each system's own, so
/// its adapter adds info(). Any thread.
class PosixKernelProcesses : public KernelProcesses {
 public:
  [[nodiscard]] std::int32_t ownPid() const final;
  [[nodiscard]] std::int32_t ownGroup() const final;
  void kill(std::int32_t pid) final;
  void killGroup(std::int32_t group) final;
};

}  // namespace tamo::platform

#pragma once

#include "platform/kernel_processes.hpp"

namespace tamo::macos {

/// The kernel's records, one system call each.
///
/// A process of another user may not be asked about and is absent. So is, as far as is known, a process that
/// has exited and waits to be reaped: the kernel finds those only when asked for them specially, which this
/// does not do. Both read as gone.
class MacKernelProcesses final : public platform::KernelProcesses {
 public:
  [[nodiscard]] std::optional<platform::ProcessInfo> info(std::int32_t pid) const override;
  [[nodiscard]] std::int32_t ownPid() const override;
  [[nodiscard]] std::int32_t ownGroup() const override;
  void kill(std::int32_t pid) override;
  void killGroup(std::int32_t group) override;
};

}  // namespace tamo::macos

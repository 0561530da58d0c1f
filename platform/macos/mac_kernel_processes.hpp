#pragma once

#include "platform/posix/posix_kernel_processes.hpp"

namespace tamo::macos {

/// The kernel's records, one system call each.
///
/// A process of another user may not be asked about and is absent. So is, as far as is known, a process that
/// has exited and waits to be reaped: the kernel finds those only when asked for them specially, which this
/// does not do. Both read as gone.
class MacKernelProcesses final : public platform::PosixKernelProcesses {
 public:
  [[nodiscard]] std::optional<platform::ProcessInfo> info(std::int32_t pid) const override;
};

}  // namespace tamo::macos

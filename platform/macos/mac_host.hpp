#pragma once

#include "platform/macos/mac_agent_services.hpp"
#include "platform/macos/mac_application.hpp"
#include "platform/macos/mac_bundles.hpp"
#include "platform/macos/mac_files.hpp"
#include "platform/macos/mac_kernel_processes.hpp"
#include "platform/macos/mac_log.hpp"
#include "platform/macos/mac_main_queue.hpp"
#include "platform/macos/mac_user_files.hpp"
#include "platform/macos/mac_workspace.hpp"
#include "platform/platform.hpp"
#include "platform/posix/posix_clock.hpp"
#include "platform/posix/posix_local_sockets.hpp"
#include "platform/posix/posix_lock_files.hpp"
#include "platform/posix/posix_processes.hpp"
#include "platform/posix/posix_threads.hpp"
#include "platform/posix/posix_user.hpp"

namespace tamo::macos {

/// The Mac that this process runs on.
class MacHost final : public platform::Host {
 public:
  [[nodiscard]] const platform::Platform& platform() const override { return platform_; }

 private:
  struct Parts {
    MacApplication application;
    MacMainQueue mainQueue;
    MacAgentServices agentServices;
    MacWorkspace workspace;
    platform::PosixProcesses processes;
    MacKernelProcesses kernelProcesses;
    platform::PosixThreads threads;
    MacFiles files;
    MacUserFiles userFiles;
    platform::PosixLockFiles lockFiles;
    MacBundles bundles;
    platform::PosixUser user;
    platform::PosixClock clock;
    platform::PosixLocalSockets localSockets;
    MacLog logSystem;
  };

  Parts parts_;
  platform::Platform platform_ = platform::platformOf(parts_);
};

}  // namespace tamo::macos

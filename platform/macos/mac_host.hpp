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
  MacApplication application_;
  MacMainQueue mainQueue_;
  MacAgentServices agentServices_;
  MacWorkspace workspace_;
  platform::PosixProcesses processes_;
  MacKernelProcesses kernelProcesses_;
  platform::PosixThreads threads_;
  MacFiles files_;
  MacUserFiles userFiles_;
  platform::PosixLockFiles lockFiles_;
  MacBundles bundles_;
  platform::PosixUser user_;
  platform::PosixClock clock_;
  platform::PosixLocalSockets localSockets_;
  MacLog log_;
  platform::Platform platform_{.application = application_,
                               .mainQueue = mainQueue_,
                               .agentServices = agentServices_,
                               .workspace = workspace_,
                               .processes = processes_,
                               .kernelProcesses = kernelProcesses_,
                               .threads = threads_,
                               .files = files_,
                               .userFiles = userFiles_,
                               .lockFiles = lockFiles_,
                               .bundles = bundles_,
                               .user = user_,
                               .clock = clock_,
                               .localSockets = localSockets_,
                               .logSystem = log_};
};

}  // namespace tamo::macos

#pragma once

#include "platform/platform.hpp"
#include "platform/posix/posix_threads.hpp"
#include "platform/stage/noted_processes.hpp"
#include "platform/stage/noted_surroundings.hpp"
#include "platform/stage/run_loop.hpp"
#include "platform/stage/stage_agent_services.hpp"
#include "platform/stage/stage_bundles.hpp"
#include "platform/stage/stage_clock.hpp"
#include "platform/stage/stage_files.hpp"
#include "platform/stage/stage_kernel_processes.hpp"
#include "platform/stage/stage_local_sockets.hpp"
#include "platform/stage/stage_lock_files.hpp"
#include "platform/stage/stage_log.hpp"
#include "platform/stage/stage_processes.hpp"
#include "platform/stage/stage_root.hpp"
#include "platform/stage/stage_user.hpp"
#include "platform/stage/stage_user_files.hpp"
#include "platform/stage/stage_workspace.hpp"

namespace tamo::stage {

/// A companion's whole surroundings on one stage, with what it asks of them noted in the stage's journal. The thread
/// that makes it is the main thread.
class StageHost final : public platform::Host {
 public:
  /// `executable` is the host path of the running program as launched (see StageBundles).
  StageHost(const StageRoot& root, const std::string& executable)
      : StageHost(root, Journal(root), executable) {}
  StageHost(const StageRoot& root, const Journal& journal, const std::string& executable);

  [[nodiscard]] const platform::Platform& platform() const override { return platform_; }

 private:
  /// Each is made after those that it refers to.
  struct Parts {
    Parts(const StageRoot& stage, const Journal& notes, const std::string& executable);

    StageRoot root;
    Journal journal;
    StageClock clock;
    platform::PosixThreads threads;
    RunLoop mainQueue;
    RunLoop& application = mainQueue;
    StageProcesses processes;
    StageKernelProcesses kernelProcesses;
    StageFiles files;
    StageLockFiles lockFiles;
    StageBundles bundles;
    StageUser user;
    StageUserFiles userFiles;
    StageLocalSockets localSockets;
    StageLog logSystem;
    StageAgentServices agentServices;
    StageWorkspace workspace;
  };

  /// What the companion is given: the parts, most of which note in the journal what is asked of them.
  struct Noted {
    explicit Noted(Parts& parts);

    Journal& journal;
    NotedApplication application;
    NotedMainQueue mainQueue;
    StageAgentServices& agentServices;
    NotedWorkspace workspace;
    StageProcesses& processes;
    NotedKernelProcesses kernelProcesses;
    NotedThreads threads;
    NotedFiles files;
    NotedUserFiles userFiles;
    NotedLockFiles lockFiles;
    StageBundles& bundles;
    StageUser& user;
    StageClock& clock;
    StageLocalSockets& localSockets;
    NotedLog logSystem;
  };

  Parts parts_;
  Noted noted_{parts_};
  platform::Platform platform_ = platform::platformOf(noted_);
};

}  // namespace tamo::stage

#include "platform/stage/stage_host.hpp"

#include "platform/stage/privileges.hpp"

namespace tamo::stage {

StageHost::StageHost(const StageRoot& root, const std::string& executable)
    : root_(root),
      clock_(root_),
      runLoop_(root_),
      processes_(root_),
      files_(root_),
      lockFiles_(root_),
      bundles_(root_, executable),
      user_(root_),
      userFiles_(root_, clock_),
      localSockets_(root_),
      log_(root_, clock_),
      agentServices_(root_, bundles_, threads_, runLoop_),
      workspace_(root_, runLoop_, threads_),
      platform_{.application = runLoop_,
                .mainQueue = runLoop_,
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
                .logSystem = log_} {}

}  // namespace tamo::stage

namespace tamo::platform {

/// Before anything is opened: what root may do no user of a Mac may.
std::unique_ptr<Host> makeHost() {
  stage::renouncePrivileges();
  return std::make_unique<stage::StageHost>(stage::StageRoot::fromEnvironment(),
                                            stage::executableAsLaunched());
}

}  // namespace tamo::platform

#include "platform/stage/stage_host.hpp"

#include "platform/stage/privileges.hpp"

namespace tamo::stage {

StageHost::Parts::Parts(const StageRoot& stage, const std::string& executable)
    : root(stage),
      clock(root),
      mainQueue(root),
      processes(root),
      files(root),
      lockFiles(root),
      bundles(root, executable),
      user(root),
      userFiles(root, clock),
      localSockets(root),
      logSystem(root, clock),
      agentServices(root, bundles, threads, mainQueue),
      workspace(root, mainQueue, threads) {}

StageHost::StageHost(const StageRoot& root, const std::string& executable) : parts_(root, executable) {}

}  // namespace tamo::stage

namespace tamo::platform {

/// Before anything is opened: what root may do no user of a Mac may.
std::unique_ptr<Host> makeHost() {
  stage::renouncePrivileges();
  return std::make_unique<stage::StageHost>(stage::StageRoot::fromEnvironment(),
                                            stage::executableAsLaunched());
}

}  // namespace tamo::platform

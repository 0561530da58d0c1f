#include "simulation/simulated_platform.hpp"

#include "simulation/simulated_files.hpp"
#include "simulation/simulated_processes.hpp"
#include "simulation/simulated_surroundings.hpp"
#include "simulation/simulated_user.hpp"

namespace tamo::simulation {

struct SimulatedPlatform::Parts {
  explicit Parts(Companion& companion)
      : application(companion),
        mainQueue(companion),
        agentServices(companion),
        workspace(companion),
        processes(companion),
        kernelProcesses(companion),
        threads(companion),
        files(companion),
        userFiles(companion),
        lockFiles(companion),
        bundles(companion),
        user(companion),
        clock(companion),
        localSockets(companion),
        logSystem(companion) {}

  SimulatedApplication application;
  SimulatedMainQueue mainQueue;
  SimulatedAgentServices agentServices;
  SimulatedWorkspace workspace;
  SimulatedProcesses processes;
  SimulatedKernelProcesses kernelProcesses;
  SimulatedThreads threads;
  SimulatedFiles files;
  SimulatedUserFiles userFiles;
  SimulatedLockFiles lockFiles;
  SimulatedBundles bundles;
  SimulatedUser user;
  SimulatedClock clock;
  SimulatedLocalSockets localSockets;
  SimulatedLogSystem logSystem;

  platform::Platform platform = platform::platformOf(*this);
};

SimulatedPlatform::SimulatedPlatform(Companion& companion) : parts_(std::make_unique<Parts>(companion)) {}

SimulatedPlatform::~SimulatedPlatform() = default;

const platform::Platform& SimulatedPlatform::platform() const {
  return parts_->platform;
}

void SimulatedPlatform::turn() {
  parts_->workspace.turn();
}

}  // namespace tamo::simulation

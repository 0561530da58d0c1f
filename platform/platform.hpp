#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/agent_services.hpp"
#include "platform/application.hpp"
#include "platform/bundles.hpp"
#include "platform/clock.hpp"
#include "platform/files.hpp"
#include "platform/kernel_processes.hpp"
#include "platform/local_sockets.hpp"
#include "platform/lock_files.hpp"
#include "platform/log.hpp"
#include "platform/main_queue.hpp"
#include "platform/processes.hpp"
#include "platform/threads.hpp"
#include "platform/user.hpp"
#include "platform/user_files.hpp"
#include "platform/workspace.hpp"

namespace tamo::platform {

/// Everything that the system asks of the operating system. References only: who builds it owns the objects
/// and keeps them for the whole process.
struct Platform {
  Application& application;
  MainQueue& mainQueue;
  AgentServices& agentServices;
  Workspace& workspace;
  Processes& processes;
  KernelProcesses& kernelProcesses;
  Threads& threads;
  Files& files;
  UserFiles& userFiles;
  LockFiles& lockFiles;
  Bundles& bundles;
  User& user;
  Clock& clock;
  LocalSockets& localSockets;
  LogSystem& logSystem;
};

/// The platform of a backend's parts, each of which has its name here.
template <class Parts>
[[nodiscard]] Platform platformOf(Parts& parts) {
  return {.application = parts.application,
          .mainQueue = parts.mainQueue,
          .agentServices = parts.agentServices,
          .workspace = parts.workspace,
          .processes = parts.processes,
          .kernelProcesses = parts.kernelProcesses,
          .threads = parts.threads,
          .files = parts.files,
          .userFiles = parts.userFiles,
          .lockFiles = parts.lockFiles,
          .bundles = parts.bundles,
          .user = parts.user,
          .clock = parts.clock,
          .localSockets = parts.localSockets,
          .logSystem = parts.logSystem};
}

/// The real objects of the system that this program was built for.
class Host {
 public:
  virtual ~Host() = default;
  [[nodiscard]] virtual const Platform& platform() const = 0;
};

/// Called once, by main. Stops the process (fatal) when the backend's surroundings are missing.
[[nodiscard]] std::unique_ptr<Host> makeHost();

}  // namespace tamo::platform

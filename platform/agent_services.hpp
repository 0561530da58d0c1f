#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/error.hpp"

namespace tamo::platform {

/// One launch agent of the running application bundle, as service management sees it. Main thread only.
class AgentService {
 public:
  /// Absent means success.
  using Completion = std::function<void(std::optional<Error>)>;

  virtual ~AgentService() = default;

  /// 0 not registered, 1 enabled, 2 requires approval, 3 not found; asked afresh at each call. macOS often
  /// answers 3 rather than 0 for an agent that was never registered.
  [[nodiscard]] virtual std::int64_t status() = 0;

  /// Registers the agent and blocks until that is done; the agent may be started at once. Raises Error.
  virtual void registerAgent() = 0;

  /// Unregisters the agent, which stops its process first. Returns at once; `completion` is called exactly
  /// once, on any thread.
  virtual void unregisterAgent(Completion completion) = 0;
};

/// Service management. Main thread only.
class AgentServices {
 public:
  virtual ~AgentServices() = default;

  /// The agent whose property list has this file name in the running bundle. Never fails, whatever the name.
  [[nodiscard]] virtual std::unique_ptr<AgentService> agent(const std::string& plistName) = 0;

  /// Opens the system's login-items settings for the user. No result.
  virtual void openSystemSettingsLoginItems() = 0;
};

}  // namespace tamo::platform

#pragma once

#include "platform/agent_services.hpp"

namespace tamo::macos {

/// The system's service management. An agent's property list is looked for in the running bundle, under
/// "Contents/Library/LaunchAgents". A completion is called on whatever queue the system chooses.
class MacAgentServices final : public platform::AgentServices {
 public:
  [[nodiscard]] std::unique_ptr<platform::AgentService> agent(const std::string& plistName) override;
  void openSystemSettingsLoginItems() override;
};

}  // namespace tamo::macos

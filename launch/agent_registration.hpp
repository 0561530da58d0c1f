#pragma once

#include <cstdint>

#include "hardstop/hard_stopping.hpp"
#include "platform/agent_services.hpp"
#include "platform/main_queue.hpp"
#include "platform/task.hpp"

namespace tamo {

/// The values of AgentService::status, as service management defines them.
namespace AgentStatus {
inline constexpr std::int64_t notRegistered = 0;
/// Registered and allowed to run: the only status under which a reseat unregisters first.
inline constexpr std::int64_t enabled = 1;
/// Registered, but the user has to allow it in the login-items settings.
inline constexpr std::int64_t requiresApproval = 2;
inline constexpr std::int64_t notFound = 3;
}  // namespace AgentStatus

/// Changes of the agent's registration that have to be waited for. Registering alone needs no waiting and is
/// the service's own operation. Keeps nothing between calls. Main thread only; entering elsewhere stops the
/// process (fatal).
///
/// Both operations suspend and keep references to this object and to the service, of which they own neither.
/// So whoever starts one keeps both, and the task, until the task has ended; the routes do, because they own
/// the service for the length of the action and await the task within it.
class AgentRegistration {
 public:
  /// Both must outlive this.
  AgentRegistration(platform::MainQueue& queue, HardStopping& hardStopping)
      : queue_(queue), hardStopping_(hardStopping) {}

  /// Unregisters the agent and suspends until service management has completed that, without a limit of its
  /// own. Raises the completion's error unchanged.
  [[nodiscard]] platform::Task<platform::Nothing> unregister(platform::AgentService& service);

  /// Makes launchd read the bundled definition anew: unregisters an enabled agent under a hard stop, then
  /// registers it. An agent of any other status is only registered. No retry, no delay. Raises the error of
  /// the unregistering, after which nothing is registered, or that of the registering, after which the agent
  /// may be left unregistered.
  [[nodiscard]] platform::Task<platform::Nothing> reseat(platform::AgentService& service);

 private:
  platform::MainQueue& queue_;
  HardStopping& hardStopping_;
};

}  // namespace tamo

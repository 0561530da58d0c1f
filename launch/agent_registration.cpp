#include "launch/agent_registration.hpp"

#include <optional>
#include <utility>

#include "platform/completion.hpp"
#include "platform/error.hpp"

namespace tamo {

using platform::Nothing;
using platform::Task;

/// Service management answers on a thread of its own, or inside the call; either way the answer comes in by a
/// turn of the main queue.
Task<Nothing> AgentRegistration::unregister(platform::AgentService& service) {
  platform::requireMain(queue_, "unregistering the agent");
  const platform::Completion<std::optional<platform::Error>> completion(queue_);
  service.unregisterAgent(
      [completion](std::optional<platform::Error> error) { completion.deliver(std::move(error)); });
  if (const auto error = co_await completion) throw platform::Error(*error);
  co_return Nothing();
}

/// Registering anew is the only way to make launchd read the bundled definition: it keeps the one that it has
/// loaded. An agent that is not enabled has no Core to stop.
Task<Nothing> AgentRegistration::reseat(platform::AgentService& service) {
  platform::requireMain(queue_, "reseating the agent");
  if (service.status() == AgentStatus::enabled) {
    const auto stop = [this, &service] { return unregister(service); };
    // A completed unregister always counts as the Core having been asked to stop.
    const auto asked = [](const Nothing&) { return true; };
    co_await hardStopping_.hardStopping<Nothing>(stop, asked);
  }
  service.registerAgent();
  co_return Nothing();
}

}  // namespace tamo

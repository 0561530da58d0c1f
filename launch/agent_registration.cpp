#include "launch/agent_registration.hpp"

#include <optional>
#include <utility>

#include "platform/completion.hpp"
#include "platform/error.hpp"

namespace tamo {

using platform::Nothing;
using platform::Task;

Task<Nothing> AgentRegistration::unregister(platform::AgentService& service) {
  platform::requireMain(queue_, "unregistering the agent");
  const platform::Completion<std::optional<platform::Error>> completion(queue_);
  service.unregisterAgent(
      [completion](std::optional<platform::Error> error) { completion.deliver(std::move(error)); });
  if (const auto error = co_await completion) throw platform::Error(*error);
  co_return Nothing();
}

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

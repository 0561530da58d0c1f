#include "launch/agent_registration.hpp"

#include <functional>
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
  const platform::AgentService::Completion delivers = [completion](std::optional<platform::Error> error) {
    completion.deliver(std::move(error));
  };
  service.unregisterAgent(delivers);
  const auto error = co_await completion;
  if (error) throw platform::Error(*error);
  co_return Nothing();
}

Task<Nothing> AgentRegistration::reseat(platform::AgentService& service) {
  platform::requireMain(queue_, "reseating the agent");
  if (service.status() == AgentStatus::enabled) {
    const std::function<Task<Nothing>()> stop = [this, &service] { return unregister(service); };
    // A completed unregister always counts as the Core having been asked to stop.
    const std::function<bool(const Nothing&)> asked = [](const Nothing&) { return true; };
    const auto stopping = hardStopping_.hardStopping<Nothing>(stop, asked);
    co_await stopping;
  }
  service.registerAgent();
  co_return Nothing();
}

}  // namespace tamo

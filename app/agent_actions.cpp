#include "app/agent_actions.hpp"

#include <utility>

#include "app/core_sockets.hpp"
#include "platform/error.hpp"

namespace tamo {
namespace {

using platform::AgentService;
using platform::Nothing;
using platform::Task;

bool isEnabled(AgentService& service) {
  return service.status() == AgentStatus::enabled;
}

/// The body of a restart's hard stop. It blocks the main thread while launchctl runs; the watcher has its
/// own.
Task<std::int32_t> kickstartWithKill(Launchctl* launchctl) {
  co_return launchctl->kickstart({.kill = true});
}

}  // namespace

Task<Nothing> AgentActions::carryOut(std::string action, AgentService& service, OutcomeRecord& record) {
  if (action == "register") {
    auto route = registerCore(service, record);
    co_await route;
  } else if (action == "unregister") {
    auto route = needs_.registration.unregister(service);
    co_await route;
  } else if (action == "reseat") {
    auto route = needs_.registration.reseat(service);
    co_await route;
  } else if (action == "restart") {
    auto route = restart(service, record);
    co_await route;
  } else if (action == "sync") {
    auto route = sync(service, record);
    co_await route;
  } else if (action != "status") {
    throw platform::Error("TamoCore", 64, "Unknown action");
  }
  co_return Nothing();
}

/// A kickstart that fails says little: the Core may be up all the same. Only when neither its sockets nor
/// launchd speak for it is it reseated.
Task<Nothing> AgentActions::registerCore(AgentService& service, OutcomeRecord& record) {
  if (!isEnabled(service)) {
    service.registerAgent();
    co_return Nothing();
  }
  const auto status = needs_.launchctl.kickstart({.kill = false});
  record["kickstart"] = std::int64_t{status};
  const bool runs =
      status == 0 || coreAnswers(needs_.sockets, needs_.dataDirectory()) || needs_.launchctl.jobRunning();
  if (!runs) {
    auto reseating = needs_.registration.reseat(service);
    co_await reseating;
  }
  co_return Nothing();
}

Task<Nothing> AgentActions::restart(AgentService& service, OutcomeRecord& record) {
  if (!isEnabled(service)) {
    service.registerAgent();
  } else if (needs_.definition.definitionChanged()) {
    auto reseating = reseatChanged(service, record);
    co_await reseating;
  } else {
    auto restarting = restartRunning(service, record);
    co_await restarting;
  }
  co_return Nothing();
}

Task<Nothing> AgentActions::restartRunning(AgentService& service, OutcomeRecord& record) {
  const std::function<Task<std::int32_t>()> body = [launchctl = &needs_.launchctl] {
    return kickstartWithKill(launchctl);
  };
  const std::function<bool(const std::int32_t&)> asked = [](const std::int32_t& status) {
    return status == 0;
  };
  auto stopping = needs_.hardStop.hardStopping<std::int32_t>(body, asked);
  const auto status = co_await stopping;
  record["kickstart"] = std::int64_t{status};
  if (status != 0 && !needs_.launchctl.jobRunning()) {
    auto reseating = needs_.registration.reseat(service);
    co_await reseating;
  }
  co_return Nothing();
}

Task<Nothing> AgentActions::sync(AgentService& service, OutcomeRecord& record) {
  if (isEnabled(service) && needs_.definition.definitionChanged()) {
    auto reseating = reseatChanged(service, record);
    co_await reseating;
  }
  co_return Nothing();
}

Task<Nothing> AgentActions::reseatChanged(AgentService& service, OutcomeRecord& record) {
  record["reseated"] = "definition";
  auto reseating = needs_.registration.reseat(service);
  co_await reseating;
  co_return Nothing();
}

}  // namespace tamo

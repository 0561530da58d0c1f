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

}  // namespace

Task<Nothing> AgentActions::carryOut(std::string action, AgentService& service, OutcomeRecord& record) {
  if (action == "register") {
    co_await registerCore(service, record);
  } else if (action == "unregister") {
    co_await needs_.registration.unregister(service);
  } else if (action == "reseat") {
    co_await needs_.registration.reseat(service);
  } else if (action == "restart") {
    co_await restart(service, record);
  } else if (action == "sync") {
    co_await sync(service, record);
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
    co_await needs_.registration.reseat(service);
  }
  co_return Nothing();
}

/// A kickstart would start the definition that launchd has loaded; for a changed one only a reseat will do.
Task<Nothing> AgentActions::restart(AgentService& service, OutcomeRecord& record) {
  if (!isEnabled(service)) {
    service.registerAgent();
  } else if (needs_.definition.definitionChanged()) {
    co_await reseatChanged(service, record);
  } else {
    co_await restartRunning(service, record);
  }
  co_return Nothing();
}

/// The kickstart blocks the main thread while launchctl runs; the watcher of the hard stop has a thread of its
/// own. One that failed may have restarted the Core all the same, so launchd is asked before it is reseated.
Task<Nothing> AgentActions::restartRunning(AgentService& service, OutcomeRecord& record) {
  const auto kickstart = [this]() -> Task<std::int32_t> {
    co_return needs_.launchctl.kickstart({.kill = true});
  };
  const auto asked = [](const std::int32_t& status) { return status == 0; };
  const auto status = co_await needs_.hardStop.hardStopping<std::int32_t>(kickstart, asked);
  record["kickstart"] = std::int64_t{status};
  if (status != 0 && !needs_.launchctl.jobRunning()) {
    co_await needs_.registration.reseat(service);
  }
  co_return Nothing();
}

Task<Nothing> AgentActions::sync(AgentService& service, OutcomeRecord& record) {
  if (isEnabled(service) && needs_.definition.definitionChanged()) {
    co_await reseatChanged(service, record);
  }
  co_return Nothing();
}

/// The reason is recorded before the reseat, whatever comes of it; an error replaces the whole record.
Task<Nothing> AgentActions::reseatChanged(AgentService& service, OutcomeRecord& record) {
  record["reseated"] = "definition";
  co_await needs_.registration.reseat(service);
  co_return Nothing();
}

}  // namespace tamo

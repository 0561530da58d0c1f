#pragma once

#include <functional>
#include <optional>
#include <string>

#include "app/outcome_record.hpp"
#include "hardstop/hard_stopping.hpp"
#include "launch/agent_registration.hpp"
#include "launch/definition_check.hpp"
#include "launch/launchctl.hpp"
#include "platform/agent_services.hpp"
#include "platform/local_sockets.hpp"
#include "platform/task.hpp"

namespace tamo {

/// The routes of the five actions that act on the Core agent. Each runs inside the dispatch: the guard has
/// passed and the job lock is asked for. A route may store "kickstart" and "reseated" in the record; what it
/// raises ends it at once and is the dispatch's to report. Main thread.
///
/// Every operation suspends, and the service and the record are references: the dispatch keeps both in its
/// own frame, which awaits the route to its end.
class AgentActions {
 public:
  struct Needs {
    Launchctl& launchctl;
    DefinitionCheck& definition;
    AgentRegistration& registration;
    HardStopping& hardStop;
    platform::LocalSockets& sockets;
    std::function<std::optional<std::string>()> dataDirectory;
  };

  explicit AgentActions(Needs needs) : needs_(std::move(needs)) {}

  /// Carries out "register", "unregister", "reseat", "restart" or "sync", compared with case; does nothing
  /// for "status". Any other name raises the error "Unknown action" (domain "TamoCore", code 64).
  platform::Task<platform::Nothing> carryOut(std::string action, platform::AgentService& service,
                                             OutcomeRecord& record);

 private:
  platform::Task<platform::Nothing> registerCore(platform::AgentService& service, OutcomeRecord& record);
  platform::Task<platform::Nothing> restart(platform::AgentService& service, OutcomeRecord& record);
  platform::Task<platform::Nothing> restartRunning(platform::AgentService& service, OutcomeRecord& record);
  platform::Task<platform::Nothing> sync(platform::AgentService& service, OutcomeRecord& record);
  platform::Task<platform::Nothing> reseatChanged(platform::AgentService& service, OutcomeRecord& record);

  Needs needs_;
};

}  // namespace tamo

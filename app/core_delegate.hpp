#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/agent_actions.hpp"
#include "app/outcome_record.hpp"
#include "app/receipt.hpp"
#include "app/tamo_core_config.hpp"
#include "guard/live_data.hpp"
#include "hardstop/hard_stopping.hpp"
#include "launch/agent_registration.hpp"
#include "launch/definition_check.hpp"
#include "launch/job_lock.hpp"
#include "launch/launchctl.hpp"
#include "move/move_to_applications.hpp"
#include "platform/platform.hpp"
#include "platform/task.hpp"

namespace tamo {

/// The application delegate: takes in the one action of the process, carries it out and asks the application
/// to terminate. It owns one of each subsystem and lives for the whole process. Main thread only; an entry
/// from another thread stops the process (fatal).
///
///   launching        `requested` may be filled by URLs
///   launch finished  the default action is fixed; for 0.4 seconds more, URLs replace what is requested
///   dispatching      refused -> terminate
///                    or locked -> routed -> succeeded or failed -> logged -> receipt -> terminate ->
///                    unlocked
///                    or, for the move, locked -> moved -> terminate -> unlocked
///
/// There is no idle state and no second action: a URL that comes later changes nothing.
class CoreDelegate final : public platform::ApplicationDelegate {
 public:
  /// `platform` refers to objects that outlive the delegate; `arguments` are the process arguments, the
  /// program path first.
  CoreDelegate(const platform::Platform& platform, const TamoCoreConfig& config,
               std::vector<std::string> arguments);

  void applicationDidFinishLaunching() override;
  void application(const std::vector<std::string>& open) override;

  /// Carries out one action from the guard to the unlock. A platform::Error that is raised on the way becomes
  /// data of the outcome; anything else that is raised stops the process.
  platform::Task<platform::Nothing> perform(std::string action);

  /// The action asked for by a URL or by the command line, the last of them; absent while there is none.
  [[nodiscard]] const std::optional<std::string>& requested() const { return requested_; }

 private:
  platform::Task<platform::Nothing> performRequested(std::string defaultAction);
  platform::Task<platform::Nothing> performOnAgent(std::string action);
  [[nodiscard]] std::optional<std::string> printedJob();
  platform::Task<platform::Nothing> moveToApplications();
  [[nodiscard]] bool mayAct(const std::string& action) const;
  void refuse(const std::string& action);
  void recordSuccess(const std::string& action, platform::AgentService& service, OutcomeRecord& record);
  void report(const std::string& action, platform::AgentService& service, OutcomeRecord& record);

  const platform::Platform platform_;
  const TamoCoreConfig config_;
  const std::vector<std::string> arguments_;
  std::optional<std::string> requested_;
  const std::unique_ptr<platform::Logger> log_;
  LiveData liveData_;
  Launchctl launchctl_;
  JobLock jobLock_;
  HardStopping hardStop_;
  DefinitionCheck definition_;
  AgentRegistration registration_;
  AgentActions agentActions_;
  MoveToApplications move_;
  ReceiptWriter receipts_;
  std::optional<platform::Task<platform::Nothing>> performing_;
};

}  // namespace tamo

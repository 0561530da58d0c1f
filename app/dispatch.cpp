#include <exception>
#include <utility>

#include "app/core_delegate.hpp"
#include "app/success_rule.hpp"
#include "guard/live_data_guard.hpp"
#include "move/app_move.hpp"
#include "platform/error.hpp"

namespace tamo {

using platform::AgentService;
using platform::LogFormat;
using platform::Nothing;
using platform::Task;

/// The order of the branches is the order of the rights: the move asks for none, the status changes nothing,
/// and everything else is for the installed copy.
Task<Nothing> CoreDelegate::perform(std::string action) {
  platform::requireMain(platform_.mainQueue, "perform");
  if (action == AppMove::operation) {
    co_await moveToApplications();
  } else if (!mayAct(action)) {
    refuse(action);
  } else {
    co_await performOnAgent(std::move(action));
  }
  co_return Nothing();
}

/// The move claims its action before the guard is asked: a copy that may not act is the very one to be moved.
/// Its result file is its record, so there is no outcome line and no receipt. Without the lock it goes on, as
/// every action does.
Task<Nothing> CoreDelegate::moveToApplications() {
  const int lock = jobLock_.lockJob();
  co_await move_.moveToApplications();
  platform_.application.terminate();
  jobLock_.unlockJob(lock);
  co_return Nothing();
}

bool CoreDelegate::mayAct(const std::string& action) const {
  return action == "status" || config_.proofHome.has_value() || liveData_.current();
}

/// The line in the log is all: a copy that may not act leaves nothing else behind.
void CoreDelegate::refuse(const std::string& action) {
  const auto app = LiveDataGuard::outerApp(platform_.bundles.mainBundlePath());
  log_->write({LogFormat::refused, {action, LiveDataGuard::refusal(app)}});
  platform_.application.terminate();
}

/// The lock is held across every suspension and let go only after the terminate request, which on a Mac ends
/// the process first: the kernel then drops the lock. An action that could not get the lock goes on without
/// it on purpose.
Task<Nothing> CoreDelegate::performOnAgent(std::string action) {
  const auto service = platform_.agentServices.agent(std::string(config_.label) + ".plist");
  OutcomeRecord record;
  const int lock = action == "status" ? -1 : jobLock_.lockJob();
  try {
    co_await agentActions_.carryOut(action, *service, record);
    recordSuccess(action, *service, record);
  } catch (const platform::Error& error) {
    record = failureRecord(error);
  }
  report(action, *service, record);
  platform_.application.terminate();
  jobLock_.unlockJob(lock);
  co_return Nothing();
}

/// The status is asked again after the settings were opened, because the user may have allowed the agent
/// there.
void CoreDelegate::recordSuccess(const std::string& action, AgentService& service, OutcomeRecord& record) {
  const bool needsApproval =
      SuccessRule::mayNeedApproval(action) && service.status() == AgentStatus::requiresApproval;
  if (needsApproval) platform_.agentServices.openSystemSettingsLoginItems();
  const auto expected = SuccessRule::expectedStatus(action);
  record["ok"] = !expected || service.status() == *expected;
  if (needsApproval) record["needsApproval"] = true;
}

/// The status is read for the record and once more for the line: each tells what was true when it was
/// written.
void CoreDelegate::report(const std::string& action, AgentService& service, OutcomeRecord& record) {
  record["operation"] = action;
  record["status"] = service.status();
  if (const auto& hardStop = hardStop_.hardStop()) record["hardStop"] = *hardStop;
  log_->write(outcomeLine(action, service.status(), record));
  if (config_.writesReceipts) receipts_.write(record);
}

}  // namespace tamo

#include "stage/launchd/service_management.hpp"

#include <algorithm>
#include <utility>

#include "stage/launchd/job_file.hpp"
#include "values/paths.hpp"
#include "values/text.hpp"

namespace tamo::stage {
namespace {

/// The codes of SMErrors.h.
constexpr int kInternalFailure = 2;
constexpr int kNotRegistered = 6;
constexpr int kListMissing = 8;
constexpr int kListInvalid = 10;

std::string listPath(const std::string& bundle, const std::string& plistName) {
  return values::joinedPath(bundle, "Contents/Library/LaunchAgents/" + plistName);
}

LaunchdAnswer faultAnswer(JobFileFault fault) {
  if (fault == JobFileFault::Missing)
    return serviceError(kListMissing, "The agent's property list was not found in the bundle");
  return serviceError(kListInvalid, "The agent's property list is not valid");
}

}  // namespace

LaunchdAnswer serviceError(int code, const std::string& description) {
  return {.status = 1, .output = "SMAppServiceErrorDomain\t" + std::to_string(code) + "\t" + description};
}

/// The record decides and not the job: an agent is enabled whether or not its process runs. For an agent that was
/// never registered a Mac has two answers in use, so the setting chooses one.
LaunchdAnswer ServiceManagement::status(const std::string& plistName) const {
  const auto record = readRecord(root_, plistName);
  return {.output = record ? std::to_string(record->status) : root_.setting("never-registered-status", "0")};
}

/// The registration is kept before the job is loaded, so that a login after a power failure loads it.
LaunchdAnswer ServiceManagement::registerAgent(const std::string& bundle, const std::string& plistName,
                                               Time now) {
  if (auto error = orderedError("next-register-error")) return *error;
  const auto definition = jobDefinitionAt(root_, listPath(bundle, plistName));
  if (!definition) return faultAnswer(definition.error());
  ServiceRecord record{.status = ServiceRecord::kEnabled, .label = definition->label, .bundle = bundle};
  if (root_.setting("approval") == "withheld") record.status = ServiceRecord::kRequiresApproval;
  if (!writeRecord(root_, plistName, record))
    return serviceError(kInternalFailure, "The registration could not be kept");
  // A registration that waits for the user succeeds here. A Mac mostly refuses it instead, which is played by an
  // ordered error.
  if (record.status == ServiceRecord::kRequiresApproval) return {};
  return load(plistName, record, now);
}

/// An ordered delay holds the answer back and not the work, as a slow answer of a Mac would come.
void ServiceManagement::unregisterAgent(const std::string& plistName, Time now, const Reply& reply) {
  const auto due = now + unregisterDelay();
  const auto answer = [this, due, reply](const LaunchdAnswer& what) {
    held_.push_back({.due = due, .reply = reply, .answer = what});
  };
  if (auto error = orderedError("next-unregister-error")) return answer(*error);
  auto record = readRecord(root_, plistName);
  if (!record || record->status == ServiceRecord::kNotRegistered)
    return answer(serviceError(kNotRegistered, "The agent isn't registered"));
  // Before the job is stopped: who asks while it still ends finds the registration gone, and another launchd does not
  // load it again.
  record->status = ServiceRecord::kNotRegistered;
  if (!writeRecord(root_, plistName, *record))
    return answer(serviceError(kInternalFailure, "The registration could not be taken back"));
  // The answer waits until the job is gone, because a Mac too ends the agent before it completes. A job that is not
  // loaded is gone already: nothing to report.
  jobs_.bootout(record->label, now, [answer](const LaunchdAnswer&) { answer({}); });
}

void ServiceManagement::approve(Time now) {
  for (const auto& name : recordedServices(root_)) {
    auto record = readRecord(root_, name);
    if (!record || record->status != ServiceRecord::kRequiresApproval) continue;
    record->status = ServiceRecord::kEnabled;
    if (writeRecord(root_, name, *record)) static_cast<void>(load(name, *record, now));
  }
}

void ServiceManagement::resume(Time now) {
  for (const auto& name : recordedServices(root_)) {
    const auto record = readRecord(root_, name);
    // A list that is gone by now leaves the agent enabled and without a job, as a login would.
    if (record && record->status == ServiceRecord::kEnabled) static_cast<void>(load(name, *record, now));
  }
}

void ServiceManagement::tick(Time now) {
  // Taken out first: an answer may lead to the next question.
  const auto held = std::exchange(held_, {});
  for (const auto& one : held) {
    if (now < one.due) {
      held_.push_back(one);
    } else {
      one.reply(one.answer);
    }
  }
}

std::optional<ServiceManagement::Time> ServiceManagement::nextDeadline() const {
  const auto next = std::ranges::min_element(held_, {}, &Held::due);
  if (next == held_.end()) return std::nullopt;
  return next->due;
}

/// The job is loaded with the registration, as on a Mac, and may run before that is answered. A Mac is reported to
/// lose the record of a bundle that was moved away; here the list is then missing, and the record stays.
LaunchdAnswer ServiceManagement::load(const std::string& plistName, const ServiceRecord& record, Time now) {
  auto definition = jobDefinitionAt(root_, listPath(record.bundle, plistName));
  if (!definition) return faultAnswer(definition.error());
  definition->submitted = true;
  // A job that is loaded already refuses, and keeps the definition that it was loaded with.
  jobs_.bootstrap(*definition, now, [](const LaunchdAnswer&) {});
  return {};
}

std::optional<LaunchdAnswer> ServiceManagement::orderedError(const std::string& setting) const {
  auto ordered = root_.setting(setting);
  if (!ordered) return std::nullopt;
  // For one call only, so that a second try can be seen to succeed.
  root_.set(setting, std::nullopt);
  return LaunchdAnswer{.status = 1, .output = *std::move(ordered)};
}

std::chrono::milliseconds ServiceManagement::unregisterDelay() const {
  const auto delay = values::decimalInt32(root_.setting("unregister-delay", "0"));
  return std::chrono::milliseconds(std::max(0, delay.value_or(0)));
}

}  // namespace tamo::stage

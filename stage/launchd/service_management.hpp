#pragma once

#include <optional>
#include <string>
#include <vector>

#include "stage/launchd/job_table.hpp"
#include "stage/launchd/service_records.hpp"

/// Service management as the stage's launchd plays it: registering an agent reads its property list from the
/// bundle afresh and loads the job; unregistering boots the job out and answers when it is gone.
///
/// The settings "approval" (withheld), "never-registered-status", "next-register-error",
/// "next-unregister-error" and "unregister-delay" steer it; they are read at each call.
///
/// Known differences from a Mac: no signature and no launch constraint is looked at; registering an agent
/// that is enabled and loaded changes nothing and is no error, although a Mac may report one; the codes of a
/// missing or unusable property list and of an unregistered agent are those of the public header, which a Mac
/// does not keep to in every version.
namespace tamo::stage {

class ServiceManagement {
 public:
  using Time = JobTable::Time;
  using Reply = JobTable::Reply;

  /// Both must outlive it.
  ServiceManagement(const StageRoot& root, JobTable& jobs) : root_(root), jobs_(jobs) {}

  [[nodiscard]] LaunchdAnswer status(const std::string& plistName) const;
  [[nodiscard]] LaunchdAnswer registerAgent(const std::string& bundle, const std::string& plistName,
                                            Time now);
  void unregisterAgent(const std::string& plistName, Time now, const Reply& reply);

  /// The user allows what waits for approval.
  void approve(Time now);

  /// Loads what is registered and allowed, as at a login.
  void resume(Time now);

  /// Gives the answers that a delay held back.
  void tick(Time now);
  [[nodiscard]] std::optional<Time> nextDeadline() const;

 private:
  struct Held {
    Time due;
    Reply reply;
    LaunchdAnswer answer;
  };

  [[nodiscard]] LaunchdAnswer load(const std::string& plistName, const ServiceRecord& record, Time now);
  [[nodiscard]] std::optional<LaunchdAnswer> orderedError(const std::string& setting) const;
  [[nodiscard]] std::chrono::milliseconds unregisterDelay() const;

  const StageRoot& root_;
  JobTable& jobs_;
  std::vector<Held> held_;
};

/// A service error as launchd answers it.
[[nodiscard]] LaunchdAnswer serviceError(int code, const std::string& description);

}  // namespace tamo::stage

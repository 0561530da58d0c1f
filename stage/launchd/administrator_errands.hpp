#pragma once

#include <map>
#include <string>
#include <sys/types.h>

#include "platform/posix/descriptor.hpp"
#include "platform/stage/stage_root.hpp"
#include "stage/launchd/job_table.hpp"

namespace tamo::stage {

/// Shell commands that launchd has run with an administrator's privileges, once the user has agreed. Each is
/// a process of its own; launchd goes on meanwhile.
class AdministratorErrands {
 public:
  using Reply = JobTable::Reply;

  /// `root` must outlive it.
  explicit AdministratorErrands(const StageRoot& root) : root_(root) {}

  /// Starts the command. The reply comes when it has ended, with its exit status (128 and the number when a
  /// signal ended it) and what it wrote to either stream; at once when it cannot be started.
  void run(const std::string& command, const Reply& reply);

  /// Replies for an errand that has ended. False when the process was none.
  bool ended(pid_t pid, const Ending& ending);

 private:
  struct Errand {
    platform::Descriptor output;
    Reply reply;
  };

  const StageRoot& root_;
  std::map<pid_t, Errand> running_;
};

}  // namespace tamo::stage

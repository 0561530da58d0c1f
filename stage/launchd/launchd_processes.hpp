#pragma once

#include <functional>

#include "platform/stage/journal.hpp"
#include "platform/stage/stage_root.hpp"
#include "stage/launchd/administrator_errands.hpp"
#include "stage/launchd/job_table.hpp"

/// The real processes under the stage's launchd; what it does to them is noted in the stage's journal. One thread.
namespace tamo::stage {

class LaunchdProcesses final : public ProcessControl {
 public:
  /// `root` must outlive it. Makes this process the parent of every orphan below it.
  explicit LaunchdProcesses(const StageRoot& root);

  /// The executable is looked up on the stage; its output goes to the control room's "core.log".
  [[nodiscard]] std::optional<pid_t> start(const JobDefinition& definition) override;
  void terminate(pid_t pid) override;
  void kill(pid_t pid) override;
  void killGroup(pid_t group) override;

  [[nodiscard]] AdministratorErrands& errands() { return errands_; }

  /// Reaps every child that is dead, orphans included, without waiting, and tells the table or the errands.
  void reap(JobTable& jobs, JobTable::Time now);

  /// Kills every child until none is left; the children of a killed one become children of this process and
  /// follow. Blocks until the last has been reaped.
  static void endAll();

 private:
  const StageRoot& root_;
  const Journal journal_;
  AdministratorErrands errands_;
};

}  // namespace tamo::stage

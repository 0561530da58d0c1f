#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/stage/stage_root.hpp"
#include "stage/launchd/job_table.hpp"
#include "stage/launchd/service_management.hpp"
#include "stage/launchd/service_target.hpp"

/// The stage's launchd: understands the questions of the wire and has them answered by the jobs and by
/// service management. It keeps no descriptors and reads no clock.
namespace tamo::stage {

class Launchd {
 public:
  using Time = JobTable::Time;
  using Reply = JobTable::Reply;

  /// Both must outlive it.
  Launchd(const StageRoot& root, ProcessControl& processes)
      : root_(root), jobs_(processes), services_(root, jobs_) {}

  /// Answers now or during a later call of the jobs or the services. A "shutdown" is answered by whoever runs
  /// launchd: its reply is kept.
  void ask(const std::vector<std::string>& words, Time now, const Reply& reply);

  [[nodiscard]] JobTable& jobs() { return jobs_; }
  [[nodiscard]] ServiceManagement& services() { return services_; }

  void tick(Time now);
  [[nodiscard]] std::optional<Time> nextDeadline() const;

  /// Set once somebody has asked for the end.
  [[nodiscard]] const std::optional<Reply>& shutdown() const { return shutdown_; }

 private:
  struct Question {
    const std::vector<std::string>& words;
    Time now;
    const Reply& reply;
  };

  void print(const Question& question);
  void kickstart(const Question& question);
  void bootstrap(const Question& question);
  void bootout(const Question& question);
  void openLoginItems(const Question& question);
  bool askServices(const Question& question);
  /// The job's target when the job is loaded; answers the question otherwise.
  std::optional<ServiceTarget> known(const Question& question, const std::string& text, bool badRequest);

  const StageRoot& root_;
  JobTable jobs_;
  ServiceManagement services_;
  std::optional<Reply> shutdown_;
};

}  // namespace tamo::stage

#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

#include "platform/stage/launchd_wire.hpp"
#include "stage/launchd/job_definition.hpp"

/// The jobs of the stage's launchd: one per label, and what becomes of each. It knows no clock and no
/// process: the time comes with every call, and processes are started and signalled through ProcessControl,
/// so the whole of it can be driven by hand.
///
/// A job is
///
///   waiting    no process                       start: running; bootout: removed
///   scheduled  a kept job's process died        at its time: running; kickstart: running at once; bootout: removed
///   running    has a process                    its end: waiting, or scheduled when kept; a stop: stopping
///   stopping   was sent SIGTERM                 at the exit timeout: SIGKILL, once; its end: removed (bootout), or
///                                               running anew (restart). A bootout during a restart wins.
///
/// The end of a job's process takes the rest of its process group with it, unless the job abandons the group.
namespace tamo::stage {

/// How a process came to its end: an exit code, or the signal that ended it.
struct Ending {
  bool signalled = false;
  int number = 0;
};

class ProcessControl {
 public:
  virtual ~ProcessControl() = default;
  /// Starts the job's executable in a process group of its own. Absent when that could not be done.
  [[nodiscard]] virtual std::optional<pid_t> start(const JobDefinition& definition) = 0;
  virtual void terminate(pid_t pid) = 0;
  virtual void kill(pid_t pid) = 0;
  virtual void killGroup(pid_t group) = 0;
};

struct Job {
  enum class State { Waiting, Scheduled, Running, Stopping };

  JobDefinition definition;
  State state = State::Waiting;
  /// Absent without a process.
  std::optional<pid_t> pid;
  /// Why the last process was started, in launchd's words.
  std::string reason;
  std::int64_t runs = 0;
  /// Absent before the first end of a process.
  std::optional<Ending> lastEnding;
};

class JobTable {
 public:
  using Time = std::chrono::steady_clock::time_point;
  /// Called once, during the call that caused it or during a later ended() or tick().
  using Reply = std::function<void(LaunchdAnswer)>;

  /// `processes` must outlive the table.
  explicit JobTable(ProcessControl& processes) : processes_(processes) {}

  /// Loads the job, and starts it when it says so. Answers at once: status 5 for a label that is loaded.
  void bootstrap(const JobDefinition& definition, Time now, const Reply& reply);

  /// Stops and removes the job; answers when it is gone. Status 3 for an unknown label.
  void bootout(const std::string& label, Time now, const Reply& reply);

  /// Makes the job run; nothing happens to a running one, and the answer is 0 as well. With `kill` a running
  /// one is stopped first. Answers when the process runs. The label must be known.
  void kickstart(const std::string& label, bool kill, Time now, const Reply& reply);

  /// Null for an unknown label. Good until the next call that changes the table.
  [[nodiscard]] const Job* find(const std::string& label) const;
  [[nodiscard]] std::vector<const Job*> all() const;

  /// The process is dead but still holds its pid: the moment to end its group, whose number nobody else can
  /// have yet.
  void dying(pid_t pid);

  /// The process is dead and its pid is free. A pid that is no job's is ignored.
  void ended(pid_t pid, Ending ending, Time now);

  /// Does what is due. The next time at which something will be; absent when nothing waits.
  void tick(Time now);
  [[nodiscard]] std::optional<Time> nextDeadline() const;

 private:
  struct Entry : Job {
    std::optional<Time> deadline;
    Time started{};
    bool removing = false;
    std::vector<Reply> waiting;
  };

  void start(Entry& entry, const std::string& reason, Time now);
  void stop(Entry& entry, Time now);
  void processGone(Entry& entry, Time now);
  static void answerRestart(Entry& entry);
  void remove(const std::string& label);
  Entry* ofProcess(pid_t pid);

  ProcessControl& processes_;
  std::map<std::string, Entry> jobs_;
};

}  // namespace tamo::stage

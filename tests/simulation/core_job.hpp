#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/error.hpp"
#include "simulation/clocks.hpp"
#include "simulation/job_texts.hpp"
#include "simulation/process_table.hpp"
#include "simulation/timeline.hpp"
#include "simulation/trace.hpp"

namespace tamo::simulation {

/// launchd's one job, the Core that it runs, and what service management remembers of it. Each Core has a
/// nature of its own: how it takes being asked to stop, whose group it is in, when it dies by itself.
class CoreJob {
 public:
  struct Needs {
    Timeline& timeline;
    const Clocks& clocks;
    Dice& dice;
    ProcessTable& processes;
    Trace& trace;
  };

  explicit CoreJob(Needs needs) : needs_(needs) {}

  /// 0 not registered, 1 enabled, 2 requires approval, 3 not found.
  std::int64_t status = 0;
  bool loaded = false;
  std::size_t definition = 0;
  /// Whether a registration waits for the user's approval.
  bool approvalWithheld = false;
  PrintForm printForm = PrintForm::Managed;
  /// Whether no Core stops by itself when it is asked to.
  bool coresIgnoreStops = false;

  using Reply = std::function<void(std::int32_t status)>;
  using Unregistered = std::function<void(std::optional<platform::Error>)>;

  /// Starts a Core unless one runs.
  void startCore();
  /// Replies with launchctl's exit status, at once or when the old Core is gone.
  void kickstart(bool kill, Reply reply);
  void registerAgent(std::size_t bundled);
  void unregisterAgent(Unregistered reply);

  /// The process that launchd takes for the job's; absent when it is reaped.
  [[nodiscard]] std::optional<std::int32_t> corePid() const;
  [[nodiscard]] bool coreListens();

  /// SIGKILL from anybody. A Core takes its time to go, anything else is gone at once.
  void sigkill(const Process& process);

 private:
  struct Nature {
    /// After being asked to stop; absent: never by itself.
    std::optional<Time> stopsAfter;
    Time zombieFor;
    Time diesAfterKill;
    bool listens = false;
  };

  [[nodiscard]] Nature drawNature();
  [[nodiscard]] std::optional<std::int32_t> drawGroup();
  void live(const Process& core);
  void askToStop();
  void dieAfter(Time delay, std::int32_t pid, std::uint64_t startMicros);
  void die(std::int32_t pid, std::uint64_t startMicros);
  void reap(std::int32_t pid, std::uint64_t startMicros);
  void maybeReuse(std::int32_t pid);
  void whenGone(std::function<void()> work);
  [[nodiscard]] Process* core();

  Needs needs_;
  std::int32_t pid_ = 0;
  std::uint64_t startMicros_ = 0;
  bool stopping_ = false;
  Nature nature_;
  /// How often a Core may still die by itself, so that a run comes to an end.
  int deathsLeft_ = 2;
  std::vector<std::function<void()>> whenGone_;
};

}  // namespace tamo::simulation

#pragma once

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "fakes/fake_platform.hpp"
#include "hardstop/hard_stopping.hpp"
#include "platform/completion.hpp"

namespace tamo {

/// Counts how often it was asked, and answers what it was told to, the last answer for ever.
class Asked {
 public:
  explicit Asked(std::vector<bool> answers) : answers_(std::move(answers)) {}

  bool operator()() { return answers_.at(std::min(times_++, answers_.size() - 1)); }
  [[nodiscard]] std::size_t times() const { return times_; }

 private:
  std::vector<bool> answers_;
  std::size_t times_ = 0;
};

/// A hard stop on fakes. The Core is process 4242, leads its group, was started before this program, process
/// 900 of group 500, and dies of the kill. Detached watchers run in finished(), on virtual time.
class HardStoppingRig : public ::testing::Test {
 protected:
  using Texts = std::vector<std::string>;
  using Operation = std::function<platform::Task<std::int32_t>()>;
  using Predicate = std::function<bool(const std::int32_t&)>;

  HardStoppingRig() {
    fake.kernelProcesses.group = 500;
    fake.kernelProcesses.processes[900] = {.startSeconds = 20, .startMicroseconds = 0, .group = 500};
    fake.kernelProcesses.processes[4242] = {.startSeconds = 10, .startMicroseconds = 0, .group = 4242};
    fake.kernelProcesses.onKillGroup = [this](std::int32_t) { coreGone(); };
    fake.kernelProcesses.onKill = [this](std::int32_t) { coreGone(); };
    fake.ledger.clear();
  }

  fakes::FakePlatform fake;
  std::optional<std::string> print = "gui/501/studio.pell.tamo.core = {\n\tpid = 4242\n}\n";
  std::optional<std::string> dataDirectory = "/data/";
  std::unique_ptr<platform::Logger> log = fake.logSystem.logger("subsystem", "lifecycle");
  HardStopping hardStops{needs(fake.threads)};
  const Predicate zero = [](const std::int32_t& status) { return status == 0; };

  HardStopping::Needs needs(platform::Threads& threads) {
    return {.kernelProcesses = fake.kernelProcesses,
            .threads = threads,
            .files = fake.files,
            .bundles = fake.bundles,
            .clock = fake.clock,
            .mainQueue = fake.mainQueue,
            .log = *log,
            .printedJob = [this] { return noted("job: print", print); },
            .dataDirectory = [this] { return noted("user: data directory", dataDirectory); }};
  }

  void coreGone() { fake.kernelProcesses.processes.erase(4242); }

  void markerFile(const std::string& name) { fake.files.contents["/data/" + name] = ""; }

  /// Gives the Info.plist of the bundle at `path` this entry.
  void info(const std::string& path, const std::string& entry) {
    fake.files.contents[path + "/Contents/Info.plist"] =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + entry +
        "</dict></plist>\n";
  }

  /// An operation that gives `status` at once.
  Operation gives(std::int32_t status) {
    return [this, status] { return giving(*this, status); };
  }
  /// An operation that raises at once.
  Operation fails() {
    return [this] { return failing(*this); };
  }
  /// An operation that gives `status` at this moment, which a watcher's sleeps must reach.
  Operation givesAt(std::chrono::nanoseconds moment, std::int32_t status) {
    return [answer = answerAt(moment), status] { return givingAfter(answer, status); };
  }
  /// An operation that raises at this moment.
  Operation failsAt(std::chrono::nanoseconds moment) {
    return [answer = answerAt(moment)] { return failingAfter(answer); };
  }

  /// Runs the task, the watchers and the main queue to the end.
  template <class T>
  T finished(platform::Task<T> task) {
    task.start();
    fake.threads.runAll();
    fake.mainQueue.runUntilIdle();
    if (!task.done()) throw std::logic_error("the task still waits");
    return task.take();
  }

  /// Runs a hard stop around the operation, with a status of 0 for asked.
  std::int32_t stopped(const Operation& operation) {
    return finished(hardStops.hardStopping<std::int32_t>(operation, zero));
  }
  /// The same for an operation that raises: gives the error's description.
  std::string raised(const Operation& operation) {
    try {
      static_cast<void>(stopped(operation));
    } catch (const platform::Error& error) {
      return error.description();
    }
    return "nothing was raised";
  }

 private:
  std::optional<std::string> noted(const std::string& deed, const std::optional<std::string>& answer) {
    fake.ledger.note(fake.clock.monotonicNow(), deed);
    return answer;
  }

  platform::Completion<platform::Nothing> answerAt(std::chrono::nanoseconds moment) {
    const platform::Completion<platform::Nothing> answer(fake.mainQueue);
    fake.clock.at(moment, [this, answer] {
      answer.deliver(platform::Nothing());
      fake.mainQueue.runPosted();
    });
    return answer;
  }

  // The rig outlives every task that a test makes.
  static platform::Task<std::int32_t> giving(HardStoppingRig& rig, std::int32_t status) {
    rig.fake.ledger.note(rig.fake.clock.monotonicNow(), "operation: runs");
    co_return status;
  }
  static platform::Task<std::int32_t> failing(HardStoppingRig& rig) {
    rig.fake.ledger.note(rig.fake.clock.monotonicNow(), "operation: runs");
    throw platform::Error("Domain", 7, "no such stop");
    co_return 0;
  }
  static platform::Task<std::int32_t> givingAfter(platform::Completion<platform::Nothing> answer,
                                                  std::int32_t status) {
    [[maybe_unused]] const auto answered = co_await answer;
    co_return status;
  }
  static platform::Task<std::int32_t> failingAfter(platform::Completion<platform::Nothing> answer) {
    [[maybe_unused]] const auto answered = co_await answer;
    throw platform::Error("Domain", 7, "no such stop");
    co_return 0;
  }
};

}  // namespace tamo

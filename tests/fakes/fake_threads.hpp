#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "fakes/fake_clock.hpp"
#include "platform/threads.hpp"

namespace tamo::fakes {

/// Threads that run when the test says so, one after the other, on the test's own thread and on virtual time.
/// Notes "threads: detach".
class FakeThreads final : public platform::Threads {
 public:
  FakeThreads(Ledger& ledger, const FakeClock& clock) : ledger_(ledger), clock_(clock) {}

  /// Whether a thread can be had.
  bool available = true;
  /// Detached and not yet run.
  std::vector<std::function<void()>> waiting;

  [[nodiscard]] bool detach(std::function<void()> work) override {
    ledger_.note(clock_.monotonicNow(), "threads: detach");
    if (available) waiting.push_back(std::move(work));
    return available;
  }

  /// Runs what is waiting to its end.
  void runAll() {
    for (auto& work : std::exchange(waiting, {}))
      work();
  }

 private:
  Ledger& ledger_;
  const FakeClock& clock_;
};

}  // namespace tamo::fakes

#pragma once

#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <thread>

#include "fakes/fake_clock.hpp"
#include "platform/main_queue.hpp"

namespace tamo::fakes {

/// A main queue that a test turns by hand, on virtual time. The thread that makes it is the main thread.
class FakeMainQueue final : public platform::MainQueue {
 public:
  FakeMainQueue(Ledger& ledger, FakeClock& clock) : ledger_(ledger), clock_(clock) {}

  /// Runs what is posted, and then what falls due as virtual time moves to it, until nothing is left.
  void runUntilIdle();
  /// Runs what is posted without letting time pass.
  void runPosted();
  [[nodiscard]] bool idle() const;

  [[nodiscard]] bool isMain() const override { return std::this_thread::get_id() == main_; }
  void post(std::function<void()> work) override;
  /// Noted as "queue: after N ms".
  void postAfter(std::chrono::nanoseconds delay, std::function<void()> work) override;

 private:
  Ledger& ledger_;
  FakeClock& clock_;
  const std::thread::id main_ = std::this_thread::get_id();
  mutable std::mutex lock_;
  std::deque<std::function<void()>> posted_;
  std::multimap<std::chrono::nanoseconds, std::function<void()>> delayed_;
};

}  // namespace tamo::fakes

#pragma once

#include <functional>
#include <map>

#include "fakes/ledger.hpp"
#include "platform/clock.hpp"

namespace tamo::fakes {

/// Virtual time: it passes only in sleep() and advanceTo(). What a test arranges with at() happens in the
/// sleep that reaches the moment, with the clock standing at that moment.
class FakeClock final : public platform::Clock {
 public:
  explicit FakeClock(Ledger& ledger) : ledger_(ledger) {}

  /// The wall clock's reading at monotonic zero; may be changed at any time, as a user sets a clock.
  std::chrono::system_clock::time_point wallAtZero{};

  void at(std::chrono::nanoseconds moment, std::function<void()> event) {
    events_.emplace(moment, std::move(event));
  }
  void advanceTo(std::chrono::nanoseconds moment);

  [[nodiscard]] std::chrono::system_clock::time_point wallNow() const override;
  [[nodiscard]] platform::Instant monotonicNow() const override { return now_; }
  /// Noted as "clock: sleep N ms".
  void sleep(std::chrono::nanoseconds duration) override;

 private:
  Ledger& ledger_;
  std::chrono::nanoseconds now_{0};
  std::multimap<std::chrono::nanoseconds, std::function<void()>> events_;
};

}  // namespace tamo::fakes

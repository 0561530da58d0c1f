#include "fakes/fake_clock.hpp"

#include <string>

namespace tamo::fakes {

void FakeClock::advanceTo(std::chrono::nanoseconds moment) {
  while (!events_.empty() && events_.begin()->first <= moment) {
    auto next = events_.extract(events_.begin());
    now_ = std::max(now_, next.key());
    next.mapped()();
  }
  now_ = std::max(now_, moment);
}

std::chrono::system_clock::time_point FakeClock::wallNow() const {
  return wallAtZero + std::chrono::duration_cast<std::chrono::system_clock::duration>(now_);
}

void FakeClock::sleep(std::chrono::nanoseconds duration) {
  const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(duration).count();
  ledger_.note(now_, "clock: sleep " + std::to_string(milliseconds) + " ms");
  advanceTo(now_ + duration);
}

}  // namespace tamo::fakes

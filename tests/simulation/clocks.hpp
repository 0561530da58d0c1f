#pragma once

#include "simulation/timeline.hpp"

namespace tamo::simulation {

/// An instant, by the time that those count who stand still while the machine sleeps, and by the clock that
/// goes on. What waits too long is told by the first, what does not wait long enough by the second.
struct Moment {
  Time awake{0};
  Time monotonic{0};
};

/// The two clocks of the played Mac. The timeline counts while the machine is awake: every process, tool and
/// delay goes by it and stands still when the machine sleeps. The monotonic clock goes on through the sleep,
/// and so does the wall clock, which can also be set.
class Clocks {
 public:
  explicit Clocks(const Timeline& awake) : awake_(awake) {}

  [[nodiscard]] Time monotonicNow() const { return awake_.now() + slept_; }
  [[nodiscard]] Moment now() const { return {.awake = awake_.now(), .monotonic = monotonicNow()}; }
  [[nodiscard]] Time wallNow() const { return monotonicNow() + offset_; }

  /// The machine sleeps and wakes. Takes no time of those that it holds.
  void sleep(Time duration) { slept_ += duration; }
  /// Somebody sets the wall clock, by so much ahead or, when negative, back.
  void setWall(Time by) {
    offset_ += by;
    wasSet_ = true;
    if (by < Time(0)) setBack_ -= by;
  }

  [[nodiscard]] Time slept() const { return slept_; }
  /// How much the wall clock was set back in all.
  [[nodiscard]] Time setBack() const { return setBack_; }
  [[nodiscard]] bool wasSet() const { return wasSet_; }

 private:
  const Timeline& awake_;
  Time slept_{0};
  Time offset_{0};
  Time setBack_{0};
  bool wasSet_ = false;
};

}  // namespace tamo::simulation

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "simulation/dice.hpp"
#include "simulation/fiber.hpp"

namespace tamo::simulation {

/// One simulated thread. Strands are kept and used again, run after run.
class Strand {
 public:
  Strand() = default;

 private:
  friend class Timeline;
  std::unique_ptr<Fiber> fiber_;
  std::function<void()> work_;
  bool busy_ = false;
  /// Counts the waits, so that a wake-up of an earlier wait is known to be stale.
  std::uint64_t wait_ = 0;
};

/// Virtual time, and the one order in which everything of a run happens. Time moves only when every strand
/// waits, to the next event; what is due at the same instant comes in an order that the dice choose.
///
/// Events run outside every strand, on whichever stack is at hand, and must neither wait nor throw.
class Timeline {
 public:
  Timeline() : root_(std::make_unique<Fiber>()) {}

  /// Begins a new run at time 0 with nothing due. Every strand has ended.
  void begin(Dice& dice);

  [[nodiscard]] Time now() const { return now_; }
  /// Null within an event.
  [[nodiscard]] Strand* current() const { return current_; }

  /// Runs `work` as an event that much later.
  void after(Time delay, std::function<void()> work);

  /// A strand that begins `work` at this instant, but not within this call. `work` must not throw.
  Strand& start(std::function<void()> work);

  /// The running strand waits that long, or until it is woken.
  void sleep(Time duration);
  /// The running strand waits until it is woken.
  void park();
  /// Ends the wait of a strand; harmless for one that waits no longer when its turn comes.
  void wake(Strand& strand);

  /// Lets things happen until nothing is due any more, or more events than `most` have. Called outside every
  /// strand. False when there were too many.
  bool runUntilIdle(std::uint64_t most);
  /// Drops everything that is due.
  void clear() { events_.clear(); }

 private:
  struct Event {
    Time at;
    std::uint64_t order;
    std::function<void()> work;
    Strand* strand;
    std::uint64_t wait;
  };
  static bool later(const Event& left, const Event& right);

  void push(Event event);
  Event pop();
  Strand* nextStrand();
  void suspend(Strand& self);
  Strand& idleStrand();
  void strandLoop(Strand& strand);

  std::unique_ptr<Fiber> root_;
  std::vector<std::unique_ptr<Strand>> strands_;
  std::vector<Event> events_;
  Dice* dice_ = nullptr;
  Time now_{0};
  Strand* current_ = nullptr;
  std::uint64_t left_ = 0;
};

}  // namespace tamo::simulation

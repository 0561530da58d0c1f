#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "exhaustion/choices.hpp"
#include "hardstop/hard_stop.hpp"

/// What surrounds a hard stop that is played through every sequence of observations: a process that can turn
/// into anything at each look, a question that can be answered either way each time, and a clock that passes
/// in sleeps and in slow looks. Everything that is asked and done is written down.
namespace tamo::exhaustion {

using std::chrono::nanoseconds;

enum class Call { Now, Look, AskCancelled, AskSpare, Signal, Sleep };

/// One call with what it was given: the pid of a look, the target and the group flag of a signal, the
/// nanoseconds of a sleep.
struct Event {
  Call call;
  std::int64_t given = 0;
  bool isGroup = false;
  bool operator==(const Event&) const = default;
};
using Trace = std::vector<Event>;

/// One call a line.
[[nodiscard]] std::string text(const Trace& trace);

/// What a walk over sequences holds fixed.
struct Setting {
  HardStop::Seen first;
  std::int32_t ownGroup = 0;
  nanoseconds grace{0};
  nanoseconds poll{0};
  nanoseconds reap{0};
  nanoseconds spareWait{0};
  /// What a sleep takes beyond what was asked for.
  nanoseconds oversleep{0};
};

/// Answers the calls of one play after the choices, and notes them. A play that goes on after `mostCalls` calls
/// finds everything gone and every deadline past from then on, so that one that runs in a circle ends.
class World {
 public:
  static constexpr std::size_t mostCalls = 300;
  static constexpr auto reason = "young_core";

  World(const Setting& setting, Choices& choices) : setting_(setting), choices_(choices) {}

  /// Forgets what was noted and sets the clock back, for another play.
  void restart();

  [[nodiscard]] nanoseconds now();
  [[nodiscard]] std::optional<HardStop::Seen> look(std::int32_t pid);
  [[nodiscard]] bool cancelled();
  [[nodiscard]] std::optional<std::string> spare();
  void signal(std::int32_t target, bool isGroup);
  void sleep(nanoseconds duration);

  [[nodiscard]] const Setting& setting() const { return setting_; }
  [[nodiscard]] const Trace& trace() const { return trace_; }
  [[nodiscard]] bool exhausted() const { return trace_.size() > mostCalls; }
  /// The operations that lead here. They refer to this world.
  [[nodiscard]] HardStop::Operations operations();

 private:
  void note(Event event) { trace_.push_back(event); }

  const Setting setting_;
  Choices& choices_;
  Trace trace_;
  nanoseconds time_{0};
};

}  // namespace tamo::exhaustion

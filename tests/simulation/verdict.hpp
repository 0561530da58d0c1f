#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "simulation/trace.hpp"

namespace tamo::simulation {

/// What must hold in every run, whatever fails. The sentences are what a broken one is reported with.
#define TAMO_INVARIANTS(INVARIANT)                                                                        \
  INVARIANT(SignalTarget, "a signal goes to the process of the first snapshot, or to the group it leads") \
  INVARIANT(OneSignal, "a hard stop sends one signal at most, and nothing else sends any")                \
  INVARIANT(Grace, "no signal before the grace period is over")                                           \
  INVARIANT(CalledOff, "no signal once the stop was called off")                                          \
  INVARIANT(Spared, "no signal while a reason to spare holds at the decision")                            \
  INVARIANT(StopNote, "the hard stop is noted once, as it went")                                          \
  INVARIANT(OneHolder, "one companion at most holds the lock")                                            \
  INVARIANT(ActsUnderLock, "who has not given up on the lock acts on the agent only while holding it")    \
  INVARIANT(LockKept, "the lock is kept until after the terminate request, and then let go")              \
  INVARIANT(TerminatesOnce, "a companion asks to terminate exactly once")                                 \
  INVARIANT(Lines, "each run logs exactly the lines that its course asks for")                            \
  INVARIANT(Truth, "the outcome line tells what the companion was told")                                  \
  INVARIANT(Receipt, "a receipt is written when it is due, and tells the same as the line")               \
  INVARIANT(Permission, "an action touches nothing but what is its own")                                  \
  INVARIANT(Deeds, "an action that does not fail does what it is for")                                    \
  INVARIANT(WholeOrAbsent, "after a move the destination is whole or absent")                             \
  INVARIANT(LastCopy, "the last copy of the application is never lost")                                   \
  INVARIANT(MoveResult, "the result of a move is recorded as it went, and only a success is opened")      \
  INVARIANT(Waits, "no wait is longer or shorter than ordered")                                           \
  INVARIANT(Ends, "every companion comes to an end")                                                      \
  INVARIANT(Requested, "the last request within the 0.4 seconds is carried out")                          \
  INVARIANT(Leftovers, "no print file is left behind")                                                    \
  INVARIANT(Watched,                                                                                      \
            "a stop request is watched when the Core was told of and is there, and a thread can be had")  \
  INVARIANT(DataPlaces, "markers and sockets are looked for where the configuration has the data")        \
  INVARIANT(Settings, "the login-items settings are opened once where approval is needed, or never")      \
  INVARIANT(Tools, "a tool is started when it is due, with its own words and streams")                    \
  INVARIANT(Files, "no file is looked at or changed that the action does not ask for")                    \
  INVARIANT(Repeats, "a seed gives the same run each time")

#define TAMO_INVARIANT_NAME(name, sentence) name,
enum class Invariant : std::size_t { TAMO_INVARIANTS(TAMO_INVARIANT_NAME) };
#undef TAMO_INVARIANT_NAME
#define TAMO_INVARIANT_ONE(name, sentence) +1
inline constexpr std::size_t invariantCount = 0 TAMO_INVARIANTS(TAMO_INVARIANT_ONE);
#undef TAMO_INVARIANT_ONE
[[nodiscard]] std::string_view nameOf(Invariant invariant);
[[nodiscard]] std::string_view sentenceOf(Invariant invariant);

struct Violation {
  Invariant invariant;
  Time at;
  std::string who;
  std::string detail;
};

/// The invariants that a run broke, in the order in which that was seen.
class Verdict {
 public:
  explicit Verdict(Trace& trace) : trace_(trace) {}

  void broken(Violation violation);
  [[nodiscard]] const std::vector<Violation>& violations() const { return violations_; }

 private:
  Trace& trace_;
  std::vector<Violation> violations_;
};

}  // namespace tamo::simulation

#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "scenario/stage.hpp"
#include "soak/bystander.hpp"
#include "soak/chance.hpp"
#include "soak/strangers.hpp"
#include "soak/tally.hpp"
#include "soak/witness.hpp"

namespace tamo::soak {

/// A process by something other than the product's own look at it: a descriptor that stays with the process
/// whoever has its pid later.
class Held {
 public:
  explicit Held(pid_t pid);
  [[nodiscard]] bool ended() const;

 private:
  platform::Descriptor process_;
};

/// What a round of one stop must come to.
struct StopExpected {
  std::string round;
  pid_t core = 0;
  /// The outcomes that are right: "exited", "killedGroup", "killedProcess", "spared".
  std::vector<std::string> outcomes;
};

/// What the companion sent must be what it says it did: for a killed outcome one SIGKILL to that group or
/// process, and otherwise nothing. Pure. Empty when it is right.
[[nodiscard]] std::string wrongInSignals(const std::string& outcome, pid_t core,
                                         const std::vector<Sent>& sent);

/// Restarts with real companions on one stage, with strangers about.
class StopRounds {
 public:
  StopRounds(Tally& tally, Chance& chance) : tally_(tally), chance_(chance) {}

  /// One restart of launchd's own Core, of the shape with this number.
  void coreRound(std::size_t shape);
  /// One restart of a Core that the harness plays and launchctl's print names, in the variant with this
  /// number: the harness decides when it ends, when it is reaped and who gets its pid.
  void playedRound(std::size_t variant);
  /// While the companion is held at its kill, the Core is replaced by a stranger of the same pid. No program
  /// could notice, so the stranger dies; an account that does not say so is worth nothing.
  void canary();

  static std::size_t shapes();
  static std::size_t variants();

 private:
  struct Shape;
  struct Play;
  /// The Core's, in its group and outside.
  struct Helpers {
    std::vector<pid_t> members;
    std::vector<pid_t> leavers;
  };

  pid_t freshCore(const std::string& words);
  void endHelpers(pid_t core);
  [[nodiscard]] Witness::Program companion(pid_t group);
  void countReadings();
  void lie(pid_t pid);
  std::optional<std::string> finish(Witness& companion, const StopExpected& expected);
  void restart(const Shape& shape, const StopExpected& expected);
  [[nodiscard]] Helpers helpersOf(pid_t core) const;
  void judgeHelpers(const std::string& outcome, const std::string& round, const Helpers& helpers);
  void leaveUnreaped(Witness& companion, const Held& core, pid_t pid);
  void takePid(Witness& companion, Strangers& strangers, const Held& core, pid_t pid);
  /// Gives the pid to a stranger that leads its group in half of the cases; false when it was not free.
  [[nodiscard]] bool giveTo(Strangers& strangers, pid_t pid);
  void passOn(Witness& companion, Strangers& strangers, pid_t pid, int times);
  void happen(const Play& round, Witness& companion, Strangers& strangers, Bystander& core);
  void play(const Play& round);

  Tally& tally_;
  Chance& chance_;
  std::chrono::nanoseconds clockBefore_{0};
  const scenario::Stage stage_{{.core = "term=obey"}};
};

}  // namespace tamo::soak

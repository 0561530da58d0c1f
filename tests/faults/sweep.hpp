#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "faults/player.hpp"

/// Every take of a kind: the single faults, the pairs of them, the deaths, the deaths after a fault. The order is fixed, so that every
/// so-manieth of them is always the same choice.
namespace tamo::faults {

struct Tally {
  /// Calls of the runs in which nothing fails, and those of them that have a way to fail.
  std::uint64_t calls = 0;
  std::uint64_t failing = 0;
  std::uint64_t ways = 0;
  std::uint64_t takes = 0;
  /// Takes that there are, played or not.
  std::uint64_t all = 0;
  /// First failures of pairs or before deaths, taken or not.
  std::uint64_t firsts = 0;
  /// Takes in which a fault or the death was not reached, which must not be.
  std::uint64_t missed = 0;
  /// Takes that left a part of a copy, because the tool that copied was killed.
  std::uint64_t partsLeft = 0;
  /// Takes in which the installed copy was opened when it was not whole.
  std::uint64_t partsOpened = 0;
  /// Deaths after which the last companion was compared with one on a fresh Mac.
  std::uint64_t compared = 0;
  std::uint64_t broken = 0;
  /// What was wrong, by the name of the take; the first of them only.
  std::vector<std::string> wrong;

  void add(const Tally& other);
};

class Sweep {
 public:
  struct How {
    /// One take of so many is played; the first is number 0.
    std::uint64_t stride = 1;
    /// Of the pairs, and of the deaths after a failure: one first failure of so many is taken at all.
    std::uint64_t firsts = 1;
    simulation::Plant plant = simulation::Plant::None;
    /// Called with every take and what came of it; may be empty.
    std::function<void(const Take&, const Played&)> seen = {};
  };

  explicit Sweep(How how) : how_(std::move(how)) {}

  /// Each call of a scene, in each of its ways, once and from then on.
  void singles(const Scene& scene, By by);
  /// Each two faults of which the second comes later in a run that has the first.
  void pairs(const Scene& scene, By by);
  /// Each point of a scene's run at which the companion can be killed, with everything that may follow.
  void deaths(const Scene& scene, By by);
  /// Each death at a call that comes later than a failure.
  void deathsAfterFaults(const Scene& scene, By by);

  [[nodiscard]] const Tally& tally() const { return tally_; }

 private:
  Played playAll(const Take& take, bool keepsCalls);
  void maybePlay(const Take& take);
  void deathsAt(const Take& base, const Death& death, const std::vector<Sequel>& sequels);
  void deathsFrom(const Take& base, std::size_t from, const Played& run, const std::vector<Sequel>& sequels);

  How how_;
  Tally tally_;
  Player player_;
};

}  // namespace tamo::faults

#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "attacks/attack.hpp"
#include "faults/scene.hpp"

/// Each attack at each moment of each scene: before every call to the platform, and every 50 ms.
namespace tamo::attacks {

using faults::By;
using faults::Scene;
using simulation::Time;

struct Tally {
  std::uint64_t takes = 0;
  /// Takes in which the moment was not reached, which must not be.
  std::uint64_t missed = 0;
  /// Signals that an attack between the last look, for a process or a marker, and the signal made wrong, which nothing
  /// can prevent; nobody but the Core was hit by any.
  std::uint64_t inTheGap = 0;
  std::uint64_t broken = 0;
  /// What was wrong, by attack and kind: how often, and the first of them with its scene and moment.
  struct Wrong {
    std::uint64_t times = 0;
    std::string first;
  };
  std::map<std::string, Wrong> wrong;
  /// How often each attack broke an invariant that it is excused for.
  std::map<std::string, std::uint64_t> excused;
};

class Sweep {
 public:
  /// One take of so many is played.
  explicit Sweep(std::uint64_t stride, simulation::Plant plant = simulation::Plant::None)
      : stride_(stride), plant_(plant) {}

  void play(const Attack& attack, const Scene& scene, By by);
  [[nodiscard]] const Tally& tally() const { return tally_; }

 private:
  struct Moment {
    /// Before the call of this number, from 1 on; 0: at a time.
    std::size_t call = 0;
    Time at{0};
  };
  struct Untouched {
    std::size_t calls = 0;
    Time lasted{0};
  };
  Untouched untouched(const Scene& scene, By by);
  void maybePlayOne(const Attack& attack, const Scene& scene, By by, const Moment& moment);
  static std::string textOf(const Attack& attack, const Scene& scene, By by, const Moment& moment);
  void sortOut(const Attack& attack, const World& world, bool inTheGap, std::vector<std::string>& wrong);
  void playOne(const Attack& attack, const Scene& scene, By by, const Moment& moment);

  std::uint64_t stride_;
  simulation::Plant plant_;
  std::uint64_t all_ = 0;
  simulation::Timeline timeline_;
  Tally tally_;
};

}  // namespace tamo::attacks

#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "simulation/plants.hpp"
#include "simulation/timeline.hpp"
#include "simulation/verdict.hpp"

namespace tamo::simulation {

struct World;

struct RunOptions {
  Plant plant = Plant::None;
  bool traced = false;
};

/// What one run came to.
struct Report {
  std::uint64_t seed = 0;
  /// From the first launch to the end of the last companion; what happens later is not counted.
  Time simulated{0};
  std::vector<Violation> violations;
  /// Empty unless the run was traced.
  std::string trace;
  /// How often things were met, by name: outcomes of hard stops, codes of moves, and the like.
  std::map<std::string, std::uint64_t> met;
};

/// Plays the companion, from launch to terminate, on a simulated Mac. One seed is one run: the same seed
/// gives the same course and the same trace, byte for byte, on every machine. One thread.
class Simulator {
 public:
  [[nodiscard]] Report run(std::uint64_t seed, const RunOptions& options);

 private:
  Timeline timeline_;
};

/// Ends what still runs, so that every stack is unwound. The last thing that is done with a world.
void endAll(World& world);

}  // namespace tamo::simulation

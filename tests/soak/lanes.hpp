#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "soak/chance.hpp"
#include "soak/tally.hpp"

namespace tamo::soak {

/// A process of its own with its share of the rounds, since a fork is only simple with one thread.
struct Lane {
  Tally& tally;
  Chance chance;
  int number = 0;
  int lanes = 1;

  /// The rounds of this lane among all: every so many.
  void each(int rounds, const std::function<void(int round)>& run) const {
    for (int round = number; round < rounds; round += lanes)
      run(round);
  }
};

/// Runs the work in that many lanes side by side and waits for all. A lane that ends otherwise than by the
/// end of its work is wrong.
void inLanes(int lanes, std::uint64_t seed, const std::string& file, const std::function<void(Lane&)>& work);

}  // namespace tamo::soak

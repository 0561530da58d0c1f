#include "simulation/dice.hpp"

namespace tamo::simulation {

Dice Dice::calm() {
  Dice dice(0);
  dice.calm_ = true;
  return dice;
}

/// What happens at the same instant keeps its order when the dice are calm.
///
/// Splitmix64: neighbouring seeds give unrelated throws, so that runs can be numbered.
std::uint64_t Dice::next() {
  if (calm_) return ++state_;
  state_ += 0x9e3779b97f4a7c15U;
  std::uint64_t mixed = state_;
  mixed = (mixed ^ (mixed >> 30U)) * 0xbf58476d1ce4e5b9U;
  mixed = (mixed ^ (mixed >> 27U)) * 0x94d049bb133111ebU;
  return mixed ^ (mixed >> 31U);
}

Time Dice::between(Time least, Time most) {
  if (calm_) return least + (most - least) / 2;
  const auto span = std::chrono::duration_cast<std::chrono::microseconds>(most - least).count();
  return least + std::chrono::microseconds(below(static_cast<std::uint64_t>(span) + 1));
}

}  // namespace tamo::simulation

#include "simulation/faults.hpp"

namespace tamo::simulation {
namespace {

#define TAMO_CALL_TEXT(name) #name,
constexpr std::array<std::string_view, callCount> names{TAMO_SIMULATED_CALLS(TAMO_CALL_TEXT)};
#undef TAMO_CALL_TEXT
#define TAMO_WAY_TEXT(name) #name,
constexpr std::array wayNames{TAMO_WAYS(TAMO_WAY_TEXT)};
#undef TAMO_WAY_TEXT

}  // namespace

std::string_view nameOf(Call call) {
  return names[static_cast<std::size_t>(call)];
}

std::string_view nameOf(Way way) {
  return wayNames.at(static_cast<std::size_t>(way));
}

Faults::Faults(Dice& dice) : dice_(dice) {
  constexpr std::array<unsigned, 6> rates{0, 0, 0, 5, 20, 80};
  constexpr std::array<unsigned, 4> slowRates{0, 0, 0, 20};
  constexpr std::array<unsigned, 4> toolRates{0, 0, 100, 400};
  inThousand_ = dice.oneOf(rates);
  slowInThousand_ = dice.oneOf(slowRates);
  toolsInThousand_ = dice.oneOf(toolRates);
  oversleeps_ = dice.chance(250);
  picks_ = dice.chance(200);
  if (picks_) picked_ = static_cast<Call>(dice.below(callCount));
}

bool Faults::strikes(Call call) {
  if (!mayFail(call)) return false;
  if (picks_ && call == picked_) return dice_.chance(500);
  return inThousand_ > 0 && dice_.chance(inThousand_);
}

Time Faults::slowness() {
  if (slowInThousand_ == 0 || !dice_.chance(slowInThousand_)) return Time(0);
  return dice_.between(std::chrono::microseconds(100), std::chrono::milliseconds(300));
}

Time Faults::oversleep() {
  return oversleeps_ ? dice_.between(Time(0), std::chrono::milliseconds(2)) : Time(0);
}

Way Faults::toolTrouble() {
  if (toolsInThousand_ == 0 || !dice_.chance(toolsInThousand_)) return Way::None;
  constexpr std::array troubles{Way::Slow, Way::Hangs, Way::Exits, Way::Garbage, Way::Signalled, Way::Exits};
  return dice_.oneOf(troubles);
}

}  // namespace tamo::simulation

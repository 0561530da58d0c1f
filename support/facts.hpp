#pragma once

#include <vector>

#include "support/actions.hpp"

namespace tamo::support {

/// An action's lines by what they are; each may be missing. Lives no longer than the action.
struct Facts {
  const OutcomeSaid* outcome = nullptr;
  const DefinitionSaid* definition = nullptr;
  bool definitionCut = false;
  std::vector<const HardStopSaid*> hardStops{};
};

/// Pure.
[[nodiscard]] Facts factsOf(const Action& action);

/// Whether the agent's definition was looked at, as a restart and a sync of an enabled agent do.
[[nodiscard]] inline bool compared(const Facts& facts) {
  return facts.definition != nullptr || facts.definitionCut;
}

}  // namespace tamo::support

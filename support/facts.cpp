#include "support/facts.hpp"

namespace tamo::support {

Facts factsOf(const Action& action) {
  Facts facts;
  for (const auto& line : action.lines) {
    if (const auto* outcome = std::get_if<OutcomeSaid>(&line.message)) facts.outcome = outcome;
    if (const auto* definition = std::get_if<DefinitionSaid>(&line.message)) facts.definition = definition;
    if (std::holds_alternative<DefinitionCutSaid>(line.message)) facts.definitionCut = true;
    if (const auto* stop = std::get_if<HardStopSaid>(&line.message)) facts.hardStops.push_back(stop);
  }
  return facts;
}

}  // namespace tamo::support

#pragma once

#include <string>

#include "support/facts.hpp"
#include "support/words.hpp"

/// What a comparison of definitions and a hard stop say in plain words, and what follows from them. Pure.
namespace tamo::support {

[[nodiscard]] std::string definitionStep(const DefinitionSaid& said);
[[nodiscard]] std::string definitionCutStep();
[[nodiscard]] std::string hardStopStep(const HardStopSaid& said);

void addDefinitionAdvice(Story& story, const DefinitionSaid& said);
void addHardStopAdvice(Story& story, const HardStopSaid& said);

}  // namespace tamo::support

#pragma once

#include <string>
#include <vector>

#include "support/facts.hpp"
#include "support/words.hpp"

/// What an outcome line says in plain words, and what follows from it. Pure.
namespace tamo::support {

/// `facts` has an outcome, here and below.
[[nodiscard]] std::string outcomeStep(const Facts& facts);
[[nodiscard]] std::string outcomeVerdict(const Facts& facts);
void addOutcomeAdvice(Story& story, const Facts& facts);

}  // namespace tamo::support

#pragma once

#include <string>

#include "support/facts.hpp"
#include "support/words.hpp"

/// What the error of an outcome says in plain words. Pure.
namespace tamo::support {

/// "SMAppServiceErrorDomain 1, …", and where its description is. `said` has an error, here and below.
[[nodiscard]] std::string errorInWords(const OutcomeSaid& said);

/// What follows from the error and from the status that the agent has after it.
[[nodiscard]] Advice errorAdvice(const Facts& facts);

}  // namespace tamo::support

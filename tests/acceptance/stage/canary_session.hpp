#pragma once

#include <ostream>
#include <string>

#include "acceptance/player.hpp"
#include "acceptance/stage/canaries.hpp"

namespace tamo::acceptance {

/// What is wrong with what came of a canary: the check has to fail, and where the canary says by which judgement, by
/// that one. Empty when all is well.
[[nodiscard]] std::string canaryFault(const Canary& canary, const Played& played);

/// What is wrong with a check that a lie is nothing to; empty when it holds.
[[nodiscard]] std::string sparedFault(const Played& played);

/// Plays each check of the names, or every one, on a stage that lies to it, and tells the ones that did not fail as they
/// should; without a name also, for each kind of lie, the check that it is nothing to. The exit status: 0 when all is as
/// it should be.
[[nodiscard]] int playCanaries(const std::vector<std::string>& names, const std::string& programs,
                               std::size_t atOnce, std::ostream& out);

}  // namespace tamo::acceptance

#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "acceptance/player.hpp"
#include "acceptance/set.hpp"
#include "acceptance/stage/canaries.hpp"

namespace tamo::acceptance {

/// What is wrong with what came of a canary: the check has to fail, and where the canary says by which judgement, by
/// that one. Empty when all is well.
[[nodiscard]] std::string canaryFault(const Canary& canary, const Played& played);

/// What is wrong with a check that a lie is nothing to; empty when it holds.
[[nodiscard]] std::string sparedFault(const Played& played);

/// What is wrong with a check on a stage that does not lie; empty when it holds.
[[nodiscard]] std::string honestFault(const Played& played);

/// One stage of a session.
struct Turn {
  enum class Kind : std::uint8_t { Lying, Honest, Spared };
  Kind kind;
  const Check* check;
  /// Whose lie the stage tells; null for a stage that is honest.
  const Canary* canary;
};

/// Each of the checks that has a canary, on a stage that lies to it; after each of them the next one, on a stage that is
/// honest.
[[nodiscard]] std::vector<Turn> turnsOf(const std::vector<Chosen>& checks);

/// Plays each check of the names, or every one, on a stage that lies to it and on one that does not, in turns: the lies
/// fail their own checks and no other. Without a name also, for each kind of lie, the check that it is nothing to. What
/// was not as it should be is told. The exit status: 0 when all is.
[[nodiscard]] int playCanaries(const std::vector<std::string>& names, const std::string& programs,
                               std::size_t atOnce, std::ostream& out);

}  // namespace tamo::acceptance

#pragma once

#include <string>

#include "simulation/companion.hpp"

/// The rules of a companion's course from launch to end: what it has to carry out, and what it leaves.
namespace tamo::simulation::Referee {

enum class Course { Agent, Refused, Move };

/// Whether the copy is a release copy outside the places where it may stay, by what was told last.
[[nodiscard]] bool needsMove(const Companion& companion);
/// What the companion has to carry out, as things stand.
[[nodiscard]] const std::string& actionOf(const Companion& companion);
/// Valid once the guard has been asked.
[[nodiscard]] Course courseOf(const Companion& companion);

/// A companion ended by itself.
void ended(Companion& companion);
/// Nothing can happen any more, or, when not `inTime`, too much did.
void runEnded(World& world, bool inTime);

}  // namespace tamo::simulation::Referee

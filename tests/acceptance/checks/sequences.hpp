#pragma once

#include <array>
#include <string>

/// What three actions in a row must leave, from their order alone. Pure.
namespace tamo::acceptance {

/// The pattern of an action's outcome line, of an agent that is registered or not before it.
[[nodiscard]] std::string expectedOutcome(const std::string& action, bool registered);
/// Whether the agent is registered after it.
[[nodiscard]] bool registeredAfter(const std::string& action, bool registered);

}  // namespace tamo::acceptance

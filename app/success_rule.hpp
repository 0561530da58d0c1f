#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// What an action must have led to in order to count as done. Pure functions, any thread.
namespace tamo::SuccessRule {

/// Whether the action may leave the agent waiting for the user's approval, which is then worth opening the
/// settings for.
[[nodiscard]] bool mayNeedApproval(std::string_view action);

/// The service status that the action must have reached; absent for an action that succeeds by having been
/// carried out.
[[nodiscard]] std::optional<std::int64_t> expectedStatus(std::string_view action);

}  // namespace tamo::SuccessRule

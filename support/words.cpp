#include "support/words.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include "launch/agent_registration.hpp"
#include "move/app_move.hpp"

namespace tamo::support {
namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 7> purposes{{
    {"register", "register the agent, or start its Core when it is registered already"},
    {"unregister", "unregister the agent"},
    {"reseat", "unregister the agent and register it again"},
    {"restart", "restart the Core"},
    {"sync", "register the agent anew only if launchd's definition of it differs from the bundled one"},
    {"status", "tell the agent's status and touch nothing"},
    {AppMove::operation, "move this Tamo into /Applications"},
}};

/// Two lines of one action can lead to the same advice, as the two hard stops of a restart do.
void addOnce(std::vector<std::string>& texts, std::string_view text) {
  if (!text.empty() && std::ranges::find(texts, text) == texts.end()) texts.emplace_back(text);
}

std::string_view statusName(std::int64_t status) {
  switch (status) {
    case AgentStatus::notRegistered:
      return "not registered";
    case AgentStatus::enabled:
      return "enabled";
    case AgentStatus::requiresApproval:
      return "waiting for the user's approval";
    case AgentStatus::notFound:
      return "not found";
    default:
      return "a status that is not known here";
  }
}

}  // namespace

void add(Story& story, const Advice& advice) {
  addOnce(story.meaning, advice.meaning);
  addOnce(story.advice, advice.next);
  addOnce(story.headings, advice.heading);
}

std::string statusInWords(std::int64_t status) {
  return std::to_string(status) + " (" + std::string(statusName(status)) + ")";
}

/// Nothing for an action that is not known here: a log may be of a newer build.
std::string_view purposeOf(std::string_view action) {
  for (const auto& [name, purpose] : purposes)
    if (name == action) return purpose;
  return {};
}

}  // namespace tamo::support

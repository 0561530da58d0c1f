#include "support/outcome_words.hpp"

#include <algorithm>

#include "app/success_rule.hpp"
#include "launch/agent_registration.hpp"
#include "support/error_words.hpp"
#include "support/headings.hpp"

namespace tamo::support {
namespace {

/// The numbers are launchctl's own as people have reported them (docs/troubleshooting.md, which names them), but for
/// -1, which is the companion's for a tool without an end.
std::string kickstartInWords(const OutcomeSaid& said) {
  const auto status = said.kickstart.value_or(0);
  if (status == 0) return "launchctl kickstart ended with 0: launchd took the order.";
  const std::string ended = "launchctl kickstart ended with " + std::to_string(status);
  if (status == -1) return ended + ": it could not be started, or didn't end within 5 seconds.";
  if (status == 113) return ended + ": launchd doesn't know the job.";
  if (status == 112 || status == 125) return ended + ": this user has no graphical session.";
  return ended + ": launchd didn't take the order.";
}

/// What a failed kickstart leads to; whether it did is not in the line.
std::string afterKickstart(const OutcomeSaid& said) {
  if (said.kickstart.value_or(0) == 0) return "";
  return said.action == "register" ? " If neither the Core's sockets nor launchd spoke for a Core that runs, "
                                     "the agent was registered anew."
                                   : " If launchd said that no Core runs, the agent was registered anew.";
}

/// The way that a restart, a sync or a registering took, as far as the lines tell it. What the line says outright comes
/// first. What it leaves out is told by the action's rules, which need its name.
std::string wayInWords(const Facts& facts) {
  const auto& said = *facts.outcome;
  if (said.kickstart) return "The agent was enabled. " + kickstartInWords(said) + afterKickstart(said);
  if (said.reseated) return "The definition had changed, so the agent was unregistered and registered again.";
  if (said.action == "register") return "The agent was not enabled, so it was registered.";
  if (said.action == "restart") return "The agent was not enabled, so it was only registered.";
  if (said.action == "sync")
    return compared(facts) ? "There was nothing to do." : "The agent was not enabled, so nothing was done.";
  if (said.action == "unregister") return "The agent was unregistered.";
  if (said.action == "reseat")
    return facts.hardStops.empty() ? "The agent was registered; no Core was seen that had to stop first."
                                   : "The agent was unregistered and registered again.";
  return said.action == "status" ? "Nothing was touched." : "";
}

std::string statusSentence(const OutcomeSaid& said) {
  const std::string text = "The agent's status is " + statusInWords(said.status);
  const auto expected = SuccessRule::expectedStatus(said.action);
  if (said.error || !expected || said.action == "status") return text + ".";
  if (said.ok.value_or(false)) return text + ", as it has to be after this action.";
  return text + "; after this action it has to be " + statusInWords(*expected) + ".";
}

bool isNoSession(const OutcomeSaid& said) {
  return said.kickstart == 112 || said.kickstart == 125;
}

bool coreMayLive(const Facts& facts) {
  return std::ranges::any_of(facts.hardStops, [](const auto* stop) { return !stop->gone; });
}

void addKickstartAdvice(Story& story, const OutcomeSaid& said) {
  if (isNoSession(said))
    return add(
        story,
        {.heading = heading::noSession,
         .meaning = "The agent lives in the user's graphical session, and there is none: nothing was started "
                    "or restarted, whatever ok says.",
         .next = "Log in at the screen, or by screen sharing, and ask again."});
  add(story,
      {.heading = heading::kickstart,
       .meaning = "ok speaks of the agent's status alone; whether the Core runs is not in this line.",
       .next = "Look whether it runs: launchctl print gui/$(id -u)/studio.pell.tamo.core shows a pid."});
}

void addStatusAdvice(Story& story, const OutcomeSaid& said) {
  if (said.status == AgentStatus::requiresApproval)
    return add(story, {.heading = heading::approval,
                       .meaning = "The user has to allow the agent, or has switched it off.",
                       .next = "Have the user switch Tamo on in System Settings, General, Login Items, then "
                               "ask for register."});
  if (said.status == AgentStatus::notFound)
    return add(
        story,
        {.heading = heading::notFound,
         .meaning =
             "The system doesn't find the agent, which is also how a Mac often calls one that was never "
             "registered.",
         .next = said.action == "unregister" ? "If Tamo is to be gone, nothing. Otherwise ask for register."
                                             : "Ask for register."});
  if (said.ok == false && said.status == AgentStatus::notRegistered)
    add(story,
        {.meaning = "The agent is not registered, and the Core does not run.", .next = "Ask for register."});
  if (said.ok == false && said.action == "unregister" && said.status == AgentStatus::enabled)
    add(story, {.meaning = "The system kept the agent although it had answered that it was unregistered.",
                .next = "Ask for status, and for unregister once more if it is still enabled."});
}

/// A restart that went through launchctl without anybody watching.
bool nobodyWatched(const Facts& facts) {
  return facts.outcome->action == "restart" && facts.outcome->kickstart && facts.hardStops.empty();
}

}  // namespace

std::string outcomeStep(const Facts& facts) {
  const auto& said = *facts.outcome;
  const auto did = said.error ? errorInWords(said) : wayInWords(facts);
  return did + (did.empty() ? "" : " ") + statusSentence(said);
}

/// An ok alone is not called done: it speaks of the agent's status, and a kickstart that failed or a Core that outlived
/// its stop can stand beside it.
std::string outcomeVerdict(const Facts& facts) {
  const auto& said = *facts.outcome;
  if (said.error) return "failed";
  if (said.action == "status") return "answered";
  if (!said.ok.value_or(false)) return "not done";
  if (said.kickstart.value_or(0) != 0) return "done only as far as the agent's status goes";
  return coreMayLive(facts) ? "done, but the old Core may still run" : "done";
}

void addOutcomeAdvice(Story& story, const Facts& facts) {
  const auto& said = *facts.outcome;
  if (said.error) add(story, errorAdvice(facts));
  if (!said.error) addStatusAdvice(story, said);
  if (said.kickstart.value_or(0) != 0) return addKickstartAdvice(story, said);
  if (nobodyWatched(facts))
    add(story,
        {.heading = heading::noHardStop,
         .meaning =
             "The companion saw no process of the Core, so nobody was watched and nobody was killed. That is "
             "usual where the Core did not run."});
}

}  // namespace tamo::support

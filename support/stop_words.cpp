#include "support/stop_words.hpp"

#include "support/headings.hpp"

namespace tamo::support {
namespace {

using End = HardStopSaid::End;

/// The line has no other mark for a definition that could not be read.
bool isUnknown(const DefinitionSide& side) {
  return side.arguments == "unknown" && side.exitTimeout == "-";
}

std::string timeoutInWords(const std::string& timeout) {
  return timeout == "-" ? "none" : timeout + " s";
}

/// Arguments are long, so they are told only where they differ.
std::string sidesInWords(const DefinitionSaid& said) {
  const auto& [loaded, bundled, changed] = said;
  if (loaded == bundled)
    return "the arguments and the exit timeout (" + timeoutInWords(loaded.exitTimeout) + ") are the same";
  std::string text;
  if (loaded.arguments != bundled.arguments)
    text = "launchd runs " + loaded.arguments + ", the bundle says " + bundled.arguments;
  if (loaded.exitTimeout == bundled.exitTimeout) return text;
  if (!text.empty()) text += "; ";
  return text + "the exit timeout is " + timeoutInWords(loaded.exitTimeout) + " with launchd and " +
         timeoutInWords(bundled.exitTimeout) + " in the bundle";
}

std::string core(const HardStopSaid& said) {
  return "the Core, process " + std::to_string(said.pid) + ",";
}

/// The reasons that exist, in the order in which they are asked.
std::string reasonInWords(const std::string& reason) {
  if (reason == "revert_release")
    return "the installed build has a dot in its version, so it is a release that a revert goes back to";
  if (reason == "revert_restoring") return "a revert of the Core's database is pending or partly done";
  if (reason == "young_core")
    return "the process began later than this action, so launchd had already replaced the one to be stopped";
  return "of a reason that is not known here";
}

/// The line names no times; here and below they are those of the hard stop's rules.
std::string sparedStep(const HardStopSaid& said) {
  return "Spared " + core(said) + " which was still alive 2 seconds after it was asked to stop, because " +
         reasonInWords(said.reason) + ". No signal was sent. " +
         (said.gone ? "Within 20 seconds more it had ended by itself." : "20 seconds later it still ran.");
}

std::string killedStep(const HardStopSaid& said) {
  const bool group = said.end == End::KilledGroup;
  return "Killed " + core(said) +
         " which was still alive 2 seconds after it was asked to stop, and nothing spoke for " +
         "sparing it: SIGKILL to " + (group ? "its process group " : "process ") +
         std::to_string(said.target) + ". " +
         (said.gone ? "It is gone." : "2 seconds later it was still there.");
}

/// Each reason for sparing comes to its end in another way, and until then another restart would spare the Core again.
Advice sparedAdvice(const HardStopSaid& said) {
  if (said.gone)
    return {.heading = heading::spared, .meaning = "The Core was left alone on purpose and ended by itself."};
  if (said.reason == "revert_restoring")
    return {.heading = heading::spared,
            .meaning = "The Core was left alone on purpose: a kill could spoil the revert of its database.",
            .next =
                "Let the revert come to its end (its marker files core.db.revert.* leave the data "
                "directory), then ask "
                "for a restart again."};
  if (said.reason == "young_core")
    return {.heading = heading::spared,
            .meaning =
                "The Core that runs is a new one already, or the clock was set back between the two starts.",
            .next = "If the Core doesn't answer, restart again."};
  return {.heading = heading::spared,
          .meaning = "The Core was left alone on purpose, and the old one may still run.",
          .next =
              "Look whether it still runs (launchctl print gui/$(id -u)/studio.pell.tamo.core); restart "
              "again once the "
              "installed Tamo is no release that a revert goes back to."};
}

/// A process that outlives SIGKILL is beyond what a companion can do, and beyond what another restart would.
Advice killedAdvice(const HardStopSaid& said) {
  if (said.gone)
    return {
        .heading = heading::killed,
        .meaning = "The Core hung while it was to stop. It was ended by force; launchd starts a new one."};
  return {.heading = heading::killed,
          .meaning =
              "The process didn't vanish within 2 seconds of the kill: it may hang in the system, or the "
              "kill was "
              "not allowed.",
          .next = "Look whether process " + std::to_string(said.pid) + " is still there (ps -p " +
                  std::to_string(said.pid) + "); if it is, restart the Mac."};
}

std::string_view unreadInWords(const DefinitionSaid& said) {
  if (!isUnknown(said.loaded)) return "the bundled one could not be read";
  return isUnknown(said.bundled) ? "neither could be read" : "launchd's could not be read";
}

}  // namespace

std::string definitionStep(const DefinitionSaid& said) {
  const std::string compared = "Compared launchd's definition of the Core's job with the bundled one: ";
  if (isUnknown(said.loaded) || isUnknown(said.bundled))
    return compared + std::string(unreadInWords(said)) + ", which counts as unchanged.";
  return compared + (said.changed ? "changed; " : "not changed; ") + sidesInWords(said) + ".";
}

std::string definitionCutStep() {
  return "Compared launchd's definition of the Core's job with the bundled one; the system cut the line for "
         "its length, so "
         "what came of it isn't in the log.";
}

std::string hardStopStep(const HardStopSaid& said) {
  switch (said.end) {
    case End::Exited:
      return "Watched " + core(said) +
             " while it was asked to stop: it ended by itself within 2 seconds. No signal was sent.";
    case End::Cancelled:
      return "Watched " + core(said) +
             " but the request to stop failed, so the watch was called off while the Core was "
             "alive. No signal was sent.";
    case End::Spared:
      return sparedStep(said);
    case End::KilledGroup:
    case End::KilledProcess:
      return killedStep(said);
  }
  return {};
}

void addDefinitionAdvice(Story& story, const DefinitionSaid& said) {
  if (isUnknown(said.loaded) || isUnknown(said.bundled))
    add(story,
        {.heading = heading::noComparison,
         .meaning = "A definition that cannot be read never asks for the agent to be registered anew."});
}

/// A Core that obeyed is what everybody expects, and asks for no advice.
void addHardStopAdvice(Story& story, const HardStopSaid& said) {
  switch (said.end) {
    case End::Exited:
      return;
    case End::Cancelled:
      return add(
          story,
          {.heading = heading::calledOff,
           .meaning = "The old Core was alive when the request to stop it failed, and was not touched."});
    case End::Spared:
      return add(story, sparedAdvice(said));
    case End::KilledGroup:
    case End::KilledProcess:
      return add(story, killedAdvice(said));
  }
}

}  // namespace tamo::support

#include "support/explanation.hpp"

#include "support/facts.hpp"
#include "support/other_words.hpp"
#include "support/outcome_words.hpp"
#include "support/stop_words.hpp"

namespace tamo::support {
namespace {

/// What a line says, with what is known from the others. Here and below each kind of message has an operation of its
/// own, so one that is added and not explained doesn't compile.
struct InWords {
  const Facts& facts;

  std::string operator()(const OutcomeSaid& /*said*/) const { return outcomeStep(facts); }
  std::string operator()(const RefusedSaid& said) const { return refusedStep(said); }
  std::string operator()(const ReceiptFailedSaid& /*said*/) const {
    return "The receipt could not be written.";
  }
  std::string operator()(const DefinitionSaid& said) const { return definitionStep(said); }
  std::string operator()(const DefinitionCutSaid& /*said*/) const { return definitionCutStep(); }
  std::string operator()(const HardStopSaid& said) const { return hardStopStep(said); }
  std::string operator()(const MoveRefusedSaid& /*said*/) const {
    return "Refused: this Tamo doesn't need to be moved.";
  }
  std::string operator()(const MoveResultSaid& said) const { return moveResultStep(said); }
  std::string operator()(const FatalSaid& said) const { return "The companion stopped itself: " + said.why; }
};

/// What a line adds to the advice.
struct Advising {
  Story& story;
  const Facts& facts;

  void operator()(const OutcomeSaid& /*said*/) const { addOutcomeAdvice(story, facts); }
  void operator()(const RefusedSaid& said) const { addRefusedAdvice(story, said); }
  void operator()(const ReceiptFailedSaid& /*said*/) const { addReceiptAdvice(story); }
  void operator()(const DefinitionSaid& said) const { addDefinitionAdvice(story, said); }
  void operator()(const DefinitionCutSaid& /*said*/) const {}
  void operator()(const HardStopSaid& said) const { addHardStopAdvice(story, said); }
  void operator()(const MoveRefusedSaid& /*said*/) const { addMoveRefusedAdvice(story); }
  void operator()(const MoveResultSaid& said) const { addMoveResultAdvice(story, said); }
  void operator()(const FatalSaid& /*said*/) const { addFatalAdvice(story); }
};

/// The action's name and what came of it, from the line that ends it.
struct Heading {
  Story& story;
  const Facts& facts;

  void operator()(const OutcomeSaid& said) const { set(said.action, outcomeVerdict(facts)); }
  void operator()(const RefusedSaid& said) const { set(said.action, "refused"); }
  void operator()(const MoveRefusedSaid& /*said*/) const { set("move-to-applications", "not needed"); }
  void operator()(const MoveResultSaid& said) const { set("move-to-applications", moveResultVerdict(said)); }
  void operator()(const FatalSaid& /*said*/) const { set("", "the companion stopped itself"); }
  void operator()(const ReceiptFailedSaid& /*said*/) const {}
  void operator()(const DefinitionSaid& /*said*/) const {}
  void operator()(const DefinitionCutSaid& /*said*/) const {}
  void operator()(const HardStopSaid& /*said*/) const {}

  void set(const std::string& action, const std::string& verdict) const {
    story.action = action;
    story.verdict = verdict;
  }
};

/// A comparison is made by two actions, a hard stop by three; which it was, the missing line would tell.
std::string likelyAction(const Facts& facts) {
  if (compared(facts)) return "restart or sync";
  return facts.hardStops.empty() ? "" : "restart, reseat or sync";
}

}  // namespace

Story storyOf(const Action& action) {
  Story story;
  const auto facts = factsOf(action);
  for (const auto& line : action.lines) {
    story.steps.push_back({.at = line.at, .text = std::visit(InWords{facts}, line.message)});
    std::visit(Advising{story, facts}, line.message);
    std::visit(Heading{story, facts}, line.message);
  }
  // Before an action without its end is given a likely name: what is only guessed was asked by nobody.
  story.purpose = purposeOf(story.action);
  if (!story.verdict.empty()) return story;
  story.verdict = "its end is not in the log";
  story.action = likelyAction(facts);
  addNoEndAdvice(story);
  return story;
}

}  // namespace tamo::support

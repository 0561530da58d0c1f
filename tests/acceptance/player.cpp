#include "acceptance/player.hpp"

#include <exception>

namespace tamo::acceptance {
namespace {

using std::chrono::steady_clock;

/// What a check finds when it begins is arranged with its own verbs; a failure there is a finding like any other.
void arrange(Scene& scene, Setting setting) {
  if (setting == Setting::Downloaded)
    return scene.place.copies.place({.copy = Copy::Downloaded, .build = "5000"});
  scene.place.copies.place({});
  if (setting != Setting::Registered) return;
  auto outcome = scene.act("register").outcome();
  // Registering right after unregistering is reported to be refused now and then, which is not what this check is about.
  for (int again = 1; again <= 3 && outcome != enabled("register"); ++again) {
    scene.see.fact("registering before the check, try " + std::to_string(again), outcome);
    Scene::pause(std::chrono::seconds(1));
    outcome = scene.act("register").outcome();
  }
  if (!outcome.starts_with(enabled("register")) || scene.core() == 0)
    scene.see.that(false, "the agent is registered and its Core runs before the check begins", outcome);
}

void playOn(LaidPlace& laid, const Check& check, const Offer& offer, Played& played) {
  Findings before;
  Scene arranging(laid.place(), before, offer.terms);
  arrange(arranging, check.setting);
  if (!before.judgements().empty() && !before.allHold()) {
    played.findings = before;
    return;
  }
  for (const auto& fact : before.facts())
    played.findings.fact(fact.question, fact.answer);
  laid.begin();
  Scene scene(laid.place(), played.findings, offer.terms);
  check.play(scene);
}

Outcome outcomeOf(const Played& played) {
  if (!played.reason.empty()) return Outcome::NotPlayed;
  return played.findings.allHold() ? Outcome::Held : Outcome::Failed;
}

/// A fault that was seen before the place gave up counts.
void giveUp(Played& played, const std::string& reason) {
  const auto& seen = played.findings.judgements();
  if (seen.empty() || played.findings.allHold()) played.reason = reason;
}

}  // namespace

std::string refusal(const Check& check, const Offer& offer) {
  if (check.needsSampleCore && !offer.sampleCore)
    return "it needs the sample's own Core, not that of a real Tamo";
  if (!check.person.empty() && offer.needsPersons && !offer.personIsThere)
    return "it needs a person, with ./accept --with-me: " + std::string(check.person);
  return "";
}

Played play(const Check& check, const Lay& lay, const Offer& offer) {
  Played played{.check = &check, .reason = refusal(check, offer)};
  if (!played.reason.empty()) return played;
  const auto began = steady_clock::now();
  try {
    const auto laid = lay();
    try {
      playOn(*laid, check, offer, played);
    } catch (const CannotArrange& cannot) {
      giveUp(played, cannot.what());
    }
    for (const auto& kept : laid->leftovers())
      played.findings.keep(kept.name, kept.text);
  } catch (const std::exception& fault) {
    played.findings.that(false, "the place does its part", fault.what());
  }
  played.outcome = outcomeOf(played);
  played.took = std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now() - began);
  return played;
}

}  // namespace tamo::acceptance

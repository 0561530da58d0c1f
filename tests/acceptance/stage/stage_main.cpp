#include <iostream>

#include "acceptance/identity.hpp"
#include "acceptance/session.hpp"
#include "acceptance/stage/canaries.hpp"
#include "acceptance/stage/canary_session.hpp"
#include "acceptance/stage/stage_place.hpp"
#include "stage/control/stage_layout.hpp"

namespace {

using namespace tamo::acceptance;

int playOnStages(const Orders& orders) {
  if (orders.canaries)
    return playCanaries(orders.names, tamo::stage::ownProgramFolder(), orders.atOnce, std::cout);
  const auto* canary = orders.canary.empty() ? nullptr : canaryOf(orders.canary);
  if (!orders.canary.empty() && canary == nullptr) {
    std::cerr << "accept: \"" << orders.canary << "\" is no check with a canary\n";
    return 2;
  }
  const auto programs = tamo::stage::ownProgramFolder();
  const auto lay = [&](const Check& check) -> Lay {
    const bool lies = canary != nullptr && (orders.everywhere || canary->check == check.name);
    return [&programs, lie = lies ? canary->plant : Lie()] { return laidStage(programs, lie); };
  };
  return playSession(orders, {.facts = stageFacts(),
                              .lay = lay,
                              .offer = {.terms = orders.terms},
                              .secrets = secretsOf(identityOfThisProcess()),
                              .unplayable = notForStages()});
}

}  // namespace

/// Plays the checks on stages. The words are those of ./accept.
int main(int count, char** words) {
  return playWords(count, words, playOnStages);
}

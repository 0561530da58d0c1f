#include <cstdlib>
#include <iostream>

#include "acceptance/command_line.hpp"
#include "acceptance/identity.hpp"
#include "acceptance/mac/mac_evidence.hpp"
#include "acceptance/mac/mac_place.hpp"
#include "acceptance/session.hpp"

namespace {

using namespace tamo::acceptance;

std::string variable(const char* name, const std::string& otherwise) {
  const auto* value = std::getenv(name);
  return value == nullptr || *value == '\0' ? otherwise : value;
}

int playOnThisMac(const Orders& orders) {
  const MacSettings settings{.parts = variable("ACCEPT_PARTS", "."),
                             .identity = variable("IDENTITY", "-"),
                             .tamoApp = variable("TAMO_APP", ""),
                             .journal = variable("ACCEPT_JOURNAL", ""),
                             .home = identityOfThisProcess().home,
                             .unreadable = logFault(),
                             .withMe = orders.withMe};
  if (settings.journal.empty()) {
    std::cerr << "accept: started by ./accept alone, which keeps a journal\n";
    return 2;
  }
  auto single = orders;
  single.atOnce = 1;
  const auto lay = [&](const Check&) -> Lay { return [&settings] { return laidMac(settings); }; };
  return playSession(single, {.facts = macFacts(settings),
                              .lay = lay,
                              .offer = {.needsPersons = true,
                                        .personIsThere = orders.withMe,
                                        .sampleCore = settings.isSample(),
                                        .terms = orders.terms},
                              .secrets = macSecrets(settings)});
}

}  // namespace

/// Plays the checks on the Mac that it runs on. ./accept starts it, once it is known that nothing can be harmed.
int main(int count, char** words) {
  return playWords(count, words, playOnThisMac);
}

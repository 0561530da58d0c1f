#include "acceptance/mac/person.hpp"

#include <iostream>

#include "acceptance/place.hpp"

namespace tamo::acceptance {

void askPerson(const MacSettings& settings, const std::string& sentence) {
  if (!settings.withMe) throw CannotArrange("it needs a person: ./accept --with-me");
  std::cout << "\nPLEASE: " << sentence << "; the checks go on by themselves.\n" << std::flush;
}

}  // namespace tamo::acceptance

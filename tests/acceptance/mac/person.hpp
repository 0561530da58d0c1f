#pragma once

#include <string>

#include "acceptance/mac/mac_settings.hpp"

namespace tamo::acceptance {

/// Asks whoever sits at the Mac for something, in a sentence without its end: that says that the checks then go on by
/// themselves. Raises CannotArrange where nobody said that he is there.
void askPerson(const MacSettings& settings, const std::string& sentence);

}  // namespace tamo::acceptance

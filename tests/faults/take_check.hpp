#pragma once

#include <string>

#include "faults/player.hpp"

namespace tamo::faults {

/// Why a take is not what its words say: a fault of a call that there is not, or that cannot fail so, or a fault or a death
/// that is never reached. Empty when it is played as it is said. A take that is refused must not be played: a call that
/// fails as it cannot may stop the program.
[[nodiscard]] std::string whyNotPlayed(Player& player, const Take& take);

}  // namespace tamo::faults

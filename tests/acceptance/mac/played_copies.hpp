#pragma once

#include <string>

#include "acceptance/mac/mac_settings.hpp"

namespace tamo::acceptance {

/// Whether a program's path is one of a copy that the checks place, or of one that a move or the system put elsewhere:
/// what runs from anywhere else is not ours to end. Pure.
[[nodiscard]] bool isOfAPlayedCopy(const std::string& program, const MacSettings& settings);

}  // namespace tamo::acceptance

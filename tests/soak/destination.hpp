#pragma once

#include <optional>

#include "scenario/move_stage.hpp"

namespace tamo::soak {

/// What is found where a copy was to be moved to.
enum class Destination { Absent, Whole, Old, Unfinished };

/// `found` is absent when nothing is there, `older` when nothing was to be replaced. A folder with nothing in it is
/// there, and is no copy. Pure.
[[nodiscard]] Destination destinationOf(const std::optional<scenario::Tree>& found,
                                        const scenario::Tree& moved,
                                        const std::optional<scenario::Tree>& older);

}  // namespace tamo::soak

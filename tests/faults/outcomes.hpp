#pragma once

#include <string>

#include "faults/scene.hpp"
#include "simulation/plants.hpp"

/// How every single failure is answered, as one text that can be compared with the one that was read and
/// found right.
namespace tamo::faults {

/// For each scene, what comes of it when nothing fails, then each failure that is answered otherwise. A
/// failure is named by the call, what it was about, the how-manieth of its kind it was, and the way.
[[nodiscard]] std::string outcomesOfSingles();

/// The same of one scene.
[[nodiscard]] std::string outcomesOf(const Scene& scene, By by, simulation::Plant plant);

}  // namespace tamo::faults

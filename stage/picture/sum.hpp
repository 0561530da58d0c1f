#pragma once

#include <string>

#include "stage/picture/scene.hpp"

namespace tamo::stage {

/// The sum of a scene in one line: when a Core was asked to stop, was last seen alive, was killed, was gone, and when the
/// next one came; of a move, when its steps were taken; of any other action, when it was in the log and at its end. Pure.
[[nodiscard]] std::string sumOf(const Scene& scene);

}  // namespace tamo::stage

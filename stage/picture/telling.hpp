#pragma once

#include <string>
#include <vector>

#include "stage/picture/picture.hpp"
#include "stage/picture/scene.hpp"

/// A scene in words. Pure.
namespace tamo::stage {

/// What happened, in order: begins, ends, signals, questions, log lines. Looks and readings are left out, but for the
/// last look that found a process alive before it was killed.
[[nodiscard]] std::vector<Told> toldOf(const Scene& scene);

/// Which action it is, by the outcome's line in the log, or else by how the companion was started.
[[nodiscard]] std::string actionOf(const Scene& scene);

}  // namespace tamo::stage

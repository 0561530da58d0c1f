#pragma once

#include "platform/stage/programs/core_behaviour.hpp"
#include "platform/stage/stage_root.hpp"

namespace tamo::stage {

/// Plays the Core until it ends as ordered, or its stage disappears. It writes a line for everything that
/// happens to it to standard output and listens on "core.sock" and "talk.sock" in the data directory of the
/// stage's home. Gives the exit status.
[[nodiscard]] int runCore(const StageRoot& root, const CoreBehaviour& behaviour);

}  // namespace tamo::stage

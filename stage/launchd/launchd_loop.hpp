#pragma once

#include "platform/stage/stage_root.hpp"

namespace tamo::stage {

/// Runs the stage's launchd until it is told to shut down (by a question, SIGTERM or SIGINT) or its stage
/// disappears, and ends everything that it started. Gives the exit status: 1 when it could not begin, because
/// its socket cannot be made or another launchd runs this stage.
[[nodiscard]] int runLaunchd(const StageRoot& root);

}  // namespace tamo::stage

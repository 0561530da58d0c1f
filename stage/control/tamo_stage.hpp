#pragma once

#include <string>
#include <vector>

namespace tamo::stage {

/// The command by which a person or a script drives a stage. Gives the exit status: 0, 1 with one line on
/// standard error when something cannot be done, 2 with one line for a wrong use; "run" and "launchctl" end
/// with the status of what they became.
[[nodiscard]] int runTamoStage(const std::vector<std::string>& words);

}  // namespace tamo::stage

#pragma once

#include <string>
#include <vector>

#include "platform/stage/stage_root.hpp"

namespace tamo::stage {

/// What a tool of the stage does: it gets the stage and its arguments, and gives the exit status.
using ToolWork = int (*)(const StageRoot& root, const std::vector<std::string>& arguments);

/// Does the work of the tool of this name on the stage that the environment names, with the command line's arguments.
/// Its begin is noted in the stage's journal, and its end as well, unless it is killed or becomes another program.
[[nodiscard]] int runNoted(const std::string& name, ToolWork work, int argc, char** argv);

}  // namespace tamo::stage

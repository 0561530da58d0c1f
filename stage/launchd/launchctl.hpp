#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/stage/stage_root.hpp"

/// The stage's launchctl: print, kickstart, bootstrap and bootout, each a question to the stage's launchd.
namespace tamo::stage {

/// What launchd is to be asked for these arguments (without the program's name); absent when they are no use
/// that the stage knows.
[[nodiscard]] std::optional<std::vector<std::string>> launchctlQuestion(
    const std::vector<std::string>& arguments);

/// Has the fault that is ordered for launchctl, if any, then asks; prints output and errors. Gives the exit
/// status: 64 for a wrong use, 1 when launchd does not answer.
[[nodiscard]] int runLaunchctl(const StageRoot& root, const std::vector<std::string>& arguments);

}  // namespace tamo::stage

#pragma once

#include <string>

#include "platform/stage/stage_root.hpp"

/// What the user of a stage may do, and what an administrator is asked. All operations raise StageError when
/// they fail.
namespace tamo::stage {

/// Takes the stage's /Applications away from its user, or gives it back. Away means really away: where root
/// laid the stage the folder gets another owner (65534, "nobody"), and everywhere it loses the owner's right
/// to write when the owner is the user. Both are kept by the kernel, for every program on the stage but its
/// launchd.
void closeApplications(const StageRoot& root);
void openApplications(const StageRoot& root);

/// What becomes of the prompt for an administrator's password: one of the answers of osascript.hpp, or
/// "not-there": osascript itself is put away until another answer is chosen, so that it cannot be started.
void chooseAdministrator(const StageRoot& root, const std::string& answer);

}  // namespace tamo::stage

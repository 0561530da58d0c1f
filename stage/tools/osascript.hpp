#pragma once

#include <string>
#include <vector>

#include "platform/stage/stage_root.hpp"

/// The stage's osascript: carries out a script of the form that apple_script.hpp describes, given as lines
/// with "-e" and followed by its arguments. With administrator privileges the user is asked first; the
/// setting "administrator" says what the user does:
///
///   agree            types the password, the default
///   cancel           closes the prompt
///   refuse           has no administrator's account to name
///   wrong-password   types it wrong until the system gives up
///   wait             leaves the prompt on the screen until the setting is changed
///
/// Then the stage's launchd runs the command as the administrator. What was asked and answered is noted in
/// the control room's "prompts"; the arguments of the last call, each closed by a zero byte, are kept in
/// "osascript-arguments".
namespace tamo::stage {

/// "-e LINE" as often as wanted, then the script's arguments.
struct OsascriptUse {
  std::string script{};
  std::vector<std::string> arguments{};
};

/// Absent for what is no such use.
[[nodiscard]] std::optional<OsascriptUse> osascriptUse(const std::vector<std::string>& arguments);

/// Has the fault that is ordered for osascript, then carries out the script. Gives the exit status: 64 for a
/// wrong use, 1 for every error of the script, which is told on standard error with its number in brackets.
[[nodiscard]] int runOsascript(const StageRoot& root, const std::vector<std::string>& arguments);

}  // namespace tamo::stage

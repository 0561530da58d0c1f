#pragma once

#include <string>
#include <vector>

#include "stage/control/stage_arguments.hpp"

/// The subcommands of tamo-stage, in groups. Each takes its words completely before it does anything, so that
/// a wrong use changes nothing.
namespace tamo::stage {

struct StageCommand {
  std::string name;
  /// The words it takes, as help shows them.
  std::string words;
  std::string explanation;
  /// Gives the exit status; raises UsageError or StageError.
  int (*run)(StageArguments& arguments);
};

/// lay, strike, copy, definition.
[[nodiscard]] std::vector<StageCommand> layoutCommands();
/// run, send, launchctl.
[[nodiscard]] std::vector<StageCommand> runCommands();
/// core, approval, order, tool, set.
[[nodiscard]] std::vector<StageCommand> steeringCommands();
/// applications, administrator, translocate, open.
[[nodiscard]] std::vector<StageCommand> moveCommands();
/// status, ps, log, receipt.
[[nodiscard]] std::vector<StageCommand> viewCommands();
/// picture.
[[nodiscard]] std::vector<StageCommand> pictureCommands();

}  // namespace tamo::stage

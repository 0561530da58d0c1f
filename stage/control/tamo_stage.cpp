#include "stage/control/tamo_stage.hpp"

#include <iostream>

#include "stage/common/exit_status.hpp"
#include "stage/common/stage_error.hpp"
#include "stage/control/stage_commands.hpp"

namespace tamo::stage {
namespace {

/// What a shell's own commands exit with.
constexpr int kWrongUse = 2;

std::vector<StageCommand> allCommands() {
  std::vector<StageCommand> all;
  for (const auto& group : {layoutCommands(), runCommands(), steeringCommands(), moveCommands(),
                            viewCommands(), pictureCommands()})
    all.insert(all.end(), group.begin(), group.end());
  return all;
}

std::string indented(const std::string& text) {
  std::string result = "      ";
  for (const char character : text) {
    result += character;
    if (character == '\n') result += "      ";
  }
  return result;
}

int help() {
  std::cout << "tamo-stage drives a stage: a directory R in which a Mac is played.\n";
  for (const auto& command : allCommands())
    std::cout << "  " << command.name << " " << command.words << "\n"
              << indented(command.explanation) << "\n";
  return 0;
}

/// A wrong use is caught by itself, for it has changed nothing and has a status of its own.
int runCommand(const StageCommand& command, StageArguments& arguments) {
  try {
    return command.run(arguments);
  } catch (const UsageError& error) {
    std::cerr << "tamo-stage " << command.name << ": " << error.what() << "\n";
    return kWrongUse;
  } catch (const std::exception& error) {
    std::cerr << "tamo-stage " << command.name << ": " << error.what() << "\n";
    return kFailed;
  }
}

}  // namespace

int runTamoStage(const std::vector<std::string>& words) {
  StageArguments arguments(words);
  const auto name = arguments.takeAny().value_or("");
  if (name == "help") return help();
  for (const auto& command : allCommands())
    if (command.name == name) return runCommand(command, arguments);
  std::cerr << "tamo-stage: \"" << name << "\" is no command; try tamo-stage help\n";
  return kWrongUse;
}

}  // namespace tamo::stage

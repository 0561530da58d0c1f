#include "stage/common/stage_error.hpp"
#include "stage/control/app_copy.hpp"
#include "stage/control/stage_commands.hpp"
#include "stage/control/stage_layout.hpp"
#include "values/text.hpp"

namespace tamo::stage {
namespace {

int lay(StageArguments& arguments) {
  // What is played comes from the build that this program belongs to.
  Laying laying{.directory = arguments.take("directory"), .programs = ownProgramFolder()};
  laying.bare = arguments.takeFlag("--bare");
  arguments.finish();
  static_cast<void>(layStage(laying));
  return 0;
}

int strike(StageArguments& arguments) {
  const auto directory = arguments.take("stage");
  arguments.finish();
  strikeStage(directory);
  return 0;
}

Companion companionNamed(const std::string& name) {
  if (name == "shipped") return Companion::Shipped;
  if (name == "receipts") return Companion::Receipts;
  if (name == "proof") return Companion::Proof;
  throw UsageError("\"" + name + "\" is no program: shipped receipts proof");
}

/// A link has nothing of its own that could be different.
int copy(StageArguments& arguments) {
  const auto root = stageAt(arguments.take("stage"));
  AppCopy wanted{.where = arguments.take("place")};
  const auto identifier = arguments.takeOption("--bundle-id");
  const auto build = arguments.takeOption("--build");
  const auto program = arguments.takeOption("--program");
  wanted.quarantined = arguments.takeFlag("--quarantined");
  arguments.finish();
  if (wanted.where == "linked" && (identifier || build || program || wanted.quarantined))
    throw UsageError("linked is a link to the installed copy and takes no options");
  if (identifier) wanted.bundleID = *identifier;
  if (build) wanted.build = *build;
  if (program) wanted.companion = companionNamed(*program);
  placeCopy(root, ownProgramFolder(), wanted);
  return 0;
}

int definition(StageArguments& arguments) {
  const auto root = stageAt(arguments.take("stage"));
  AgentDefinition wanted;
  // First, because whatever follows it belongs to the agent.
  wanted.arguments = arguments.takeTail("--arguments").value_or(std::vector<std::string>());
  const auto timeout = arguments.takeOption("--exit-timeout");
  const auto where = arguments.takeOption("--copy").value_or("installed");
  wanted.binary = arguments.takeFlag("--binary");
  arguments.finish();
  if (timeout && *timeout == "none") {
    wanted.exitTimeout.reset();
  } else if (timeout) {
    wanted.exitTimeout = wholeNumber(*timeout, "number of seconds");
  }
  writeAgentDefinition(root, copyPath(root, where), wanted);
  return 0;
}

}  // namespace

std::vector<StageCommand> layoutCommands() {
  return {{"lay", "R [--bare]", "make a stage in R and start its launchd; --bare: without Tamo", lay},
          {"strike", "R", "end everything on the stage and remove it", strike},
          {"copy",
           "R WHERE [--bundle-id ID] [--build VERSION] [--program shipped|receipts|proof]\n"
           "      [--quarantined]",
           "place a copy of Tamo; WHERE: installed staged downloaded linked /PATH", copy},
          {"definition", "R [--copy WHERE] [--exit-timeout N|none] [--binary] [--arguments A…]",
           "rewrite a copy's agent list; what isn't named is as laid", definition}};
}

}  // namespace tamo::stage

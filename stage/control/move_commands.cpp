#include <iostream>

#include "platform/stage/application_opening.hpp"
#include "stage/common/rights.hpp"
#include "stage/common/stage_error.hpp"
#include "stage/control/app_copy.hpp"
#include "stage/control/stage_commands.hpp"
#include "stage/control/stage_layout.hpp"

namespace tamo::stage {
namespace {

int applications(StageArguments& arguments) {
  const auto root = stageAt(arguments.take("stage"));
  const auto word = arguments.takeOneOf("state", {"open", "closed"});
  arguments.finish();
  if (word == "closed") {
    closeApplications(root);
  } else {
    openApplications(root);
  }
  return 0;
}

int administrator(StageArguments& arguments) {
  const auto root = stageAt(arguments.take("stage"));
  const auto word =
      arguments.takeOneOf("answer", {"agree", "cancel", "refuse", "wrong-password", "wait", "not-there"});
  arguments.finish();
  chooseAdministrator(root, word);
  return 0;
}

/// The path is printed for who wants to run the copy: a Mac makes up another one each time.
int translocate(StageArguments& arguments) {
  const auto root = stageAt(arguments.take("stage"));
  const bool unknown = arguments.takeFlag("--unknown");
  const auto where = arguments.take("place");
  arguments.finish();
  std::cout << translocateCopy(root, copyPath(root, where), unknown ? Original::Unknown : Original::Known)
            << "\n";
  return 0;
}

/// In the way that a companion opens it, so an error that was ordered meets whoever comes first.
int open(StageArguments& arguments) {
  const auto root = stageAt(arguments.take("stage"));
  const auto path = copyPath(root, arguments.take("place"));
  arguments.finish();
  if (const auto error = openApplicationNow(root, path)) throw StageError(path + ": " + error->description());
  return 0;
}

}  // namespace

std::vector<StageCommand> moveCommands() {
  return {
      {"applications", "R open|closed", "whether the user may write into /Applications", applications},
      {"administrator", "R agree|cancel|refuse|wrong-password|wait|not-there",
       "what becomes of the prompt for a password; not-there: osascript can't start", administrator},
      {"translocate", "R WHERE [--unknown]", "a translocated copy of a copy; prints its path", translocate},
      {"open", "R WHERE", "start the Tamo of that copy, or bring it to the front", open}};
}

}  // namespace tamo::stage

#pragma once

#include <string>

#include "platform/stage/stage_root.hpp"

/// Lays a stage and strikes it again, for tamo-stage and for tests that need a whole played Mac. A caller
/// must know:
///
/// - A laid stage has a running launchd. It ends by strikeStage(), or by itself within about a second after
///   the directory has disappeared, and takes with it whatever it started.
/// - Programs that the caller starts on the stage get TAMO_STAGE in their environment, naming
///   StageRoot::directory(): by that they find the stage, and strikeStage() finds them.
/// - One process may lay any number of stages; each is known by its directory alone.
///
/// All operations block, and raise StageError when they fail. Any thread.
namespace tamo::stage {

struct Laying {
  /// The host directory: not there yet, or empty.
  std::string directory;
  /// The host folder with the stage's programs; see ownProgramFolder().
  std::string programs;
  /// Without an installed copy of Tamo.
  bool bare = false;
};

/// Makes the directory with everything that a Mac has for this purpose, copies the programs, places the
/// installed copy, starts launchd and waits until it answers. What a failure leaves behind can be struck.
StageRoot layStage(const Laying& laying);

/// Ends everything that runs on the stage, waits until nothing does, and removes the directory. Refuses a
/// directory that is no stage.
void strikeStage(const std::string& directory);

/// The stage in `directory`; refuses what is none.
[[nodiscard]] StageRoot stageAt(const std::string& directory);

/// The folder of the running program, where all programs of a stage lie side by side.
[[nodiscard]] std::string ownProgramFolder();

/// Starts the stage's launchd when none answers, and waits until it does.
void startLaunchd(const StageRoot& root);

}  // namespace tamo::stage

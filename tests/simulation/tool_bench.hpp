#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/processes.hpp"
#include "simulation/world.hpp"

namespace tamo::simulation {

/// A tool that was started. It goes on when the companion that started it is gone.
struct RunningTool {
  platform::ToolLaunch launch;
  Time started{0};
  bool done = false;
  /// Does not go when it is asked to.
  bool deaf = false;
  std::int32_t status = 0;
  std::string errors;
  /// The strand that waits for the end; null when none does.
  Strand* waiting = nullptr;
};

/// The tools of the played Mac: launchctl, ditto, xattr and osascript.
namespace ToolBench {

[[nodiscard]] std::shared_ptr<RunningTool> start(World& world, const platform::ToolLaunch& launch,
                                                 Way trouble);

/// SIGKILL of everything that still runs. What launchd was asked for is done all the same.
void killAll(World& world);

/// SIGTERM. Most tools go at once; one that hangs may not.
void terminate(World& world, const std::shared_ptr<RunningTool>& tool);

}  // namespace ToolBench

}  // namespace tamo::simulation

#pragma once

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

#include "platform/stage/stage_root.hpp"

/// Which programs of application bundles run on a stage. Each call reads /proc afresh; what starts or ends
/// meanwhile may be missed.
namespace tamo::stage {

struct RunningProgram {
  pid_t pid = 0;
  /// The bundle's stage path as the program was started by it, symbolic links and all. It stays what it was
  /// when the bundle is moved away, as it does for an application of a Mac.
  std::string bundle;
  /// The host path at which the executable lies now; one that was removed has " (deleted)" behind it.
  std::string executable;
};

/// The living processes that were started as "….app/Contents/MacOS/NAME" of the stage, by pid. Those of
/// another user, or with privileges that this process hasn't, are not seen.
[[nodiscard]] std::vector<RunningProgram> runningPrograms(const StageRoot& root);

/// The bundle that lies above the executable now: not where it was started, but where its files are.
[[nodiscard]] std::optional<std::string> presentBundle(const StageRoot& root, const RunningProgram& program);

}  // namespace tamo::stage

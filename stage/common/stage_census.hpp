#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

/// Which processes of this machine belong to a stage. Each call reads /proc afresh; what starts or ends
/// meanwhile may be missed.
namespace tamo::stage {

struct StageProcess {
  pid_t pid = 0;
  pid_t parent = 0;
  pid_t group = 0;
  /// The kernel's letter: "R", "S", "T", …
  char state = ' ';
  /// The command line, joined with single spaces.
  std::string command{};
};

/// The living processes that were started with TAMO_STAGE naming this directory, by pid, without the caller.
/// Zombies are not among them: they have no environment any more.
[[nodiscard]] std::vector<StageProcess> processesOfStage(const std::string& directory);

/// The children of a process, zombies included.
[[nodiscard]] std::vector<pid_t> childrenOf(pid_t parent);

}  // namespace tamo::stage

#pragma once

#include "platform/posix/posix_processes.hpp"
#include "platform/stage/journal.hpp"
#include "platform/stage/stage_root.hpp"

namespace tamo::stage {

/// Tools of the stage: a path is looked up on the stage, so "/bin/launchctl" is the stage's own. The tool is
/// a real process with real streams; argument zero is the path as it was asked for. Starts, ends and signals are noted
/// in the stage's journal.
///
/// Known differences from a Mac: the environment carries TAMO_STAGE, by which a tool finds its stage; the
/// working directory and the paths in the arguments are not translated, a tool does that itself; a script
/// needs an interpreter that exists on the host.
class StageProcesses final : public platform::Processes {
 public:
  explicit StageProcesses(const StageRoot& root) : StageProcesses(root, Journal(root)) {}
  StageProcesses(const StageRoot& root, const Journal& journal) : root_(root), journal_(journal) {}

  [[nodiscard]] std::unique_ptr<platform::Tool> start(const platform::ToolLaunch& launch) override;

 private:
  const StageRoot root_;
  const Journal journal_;
  platform::PosixProcesses host_;
};

}  // namespace tamo::stage

#pragma once

#include <cstdint>
#include <optional>

#include "platform/stage/run_loop.hpp"
#include "platform/stage/stage_root.hpp"
#include "platform/threads.hpp"
#include "platform/workspace.hpp"

namespace tamo::stage {

/// The applications of a stage: its living processes whose program lies in a bundle's Contents/MacOS. The
/// list is taken at the first question of a turn of the main loop and stays as it is until the next turn, so
/// that a wait which blocks the loop never sees an application quit.
///
/// Known differences from a Mac: launchd's agents and programs without windows are in the list as well; a
/// bundle is named by the path by which its program was started, where a Mac would follow a link; an
/// application is in front as soon as it is opened, and does not notice.
class StageWorkspace final : public platform::Workspace {
 public:
  /// `loop` and `threads` must outlive it.
  StageWorkspace(const StageRoot& root, RunLoop& loop, platform::Threads& threads)
      : root_(root), loop_(loop), threads_(threads) {}

  [[nodiscard]] std::vector<platform::RunningApplication> runningApplications() override;
  /// The completion is called on a thread of its own, or, when none can be had, on the main thread.
  void openApplication(const std::string& path, Completion completion) override;

 private:
  const StageRoot root_;
  RunLoop& loop_;
  platform::Threads& threads_;
  /// The turn in which `list_` was taken; absent before the first question.
  std::optional<std::uint64_t> turn_;
  std::vector<platform::RunningApplication> list_;
};

}  // namespace tamo::stage

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "move/app_move.hpp"
#include "move/bundle_copy.hpp"
#include "platform/bundles.hpp"
#include "platform/clock.hpp"
#include "platform/files.hpp"
#include "platform/log.hpp"
#include "platform/main_queue.hpp"
#include "platform/processes.hpp"
#include "platform/task.hpp"
#include "platform/user.hpp"
#include "platform/user_files.hpp"
#include "platform/workspace.hpp"

namespace tamo {

/// Moves the application that this process belongs to into /Applications, by the rules of AppMove:
///
///   refused     not a copy that has to move: one line in the log, nothing else
///   installing  copied, copied in place of an older build, or left as it is; after a copy the one that it
///               was made from goes to the Trash
///   recorded    one line in the log, then the result file
///   waiting     for the copy to quit, at most 30 seconds of the wall clock; only after a success
///   opening     the installed copy, brought to the front, whether or not the old one has quit
///
/// Of everything that can fail on the way, only the copy and the removal of an older installed build decide
/// the outcome; the rest is ignored. Main thread only; entering elsewhere stops the process (fatal).
class MoveToApplications {
 public:
  /// The references must outlive this.
  struct Needs {
    platform::Processes& processes;
    platform::Files& files;
    platform::UserFiles& userFiles;
    const platform::Bundles& bundles;
    const platform::User& user;
    platform::Workspace& workspace;
    platform::Clock& clock;
    platform::MainQueue& mainQueue;
    platform::Logger& log;
  };

  explicit MoveToApplications(const Needs& needs);

  /// Blocks while the tools copy, without limit, and suspends while it waits and opens. Raises nothing and
  /// does not end the application. This object outlives the task.
  [[nodiscard]] platform::Task<platform::Nothing> moveToApplications();

 private:
  [[nodiscard]] std::optional<AppMove::RunningCopy> copyToMove() const;
  void refuse();
  [[nodiscard]] bool putInPlace(const AppMove::RunningCopy& copy);
  [[nodiscard]] AppMove::Plan planFor(const std::string& here) const;
  [[nodiscard]] std::string_view install(const std::string& here);
  void removeOldCopy(const std::string& here);
  void record(const AppMove::Result& result, const std::string& bundleID);
  [[nodiscard]] bool runs(const AppMove::RunningCopy& copy);
  platform::Task<platform::Nothing> waitForQuit(AppMove::RunningCopy copy);
  platform::Task<platform::Nothing> pause();
  platform::Task<platform::Nothing> openInstalled();

  Needs needs_;
  BundleCopy bundleCopy_;
};

}  // namespace tamo

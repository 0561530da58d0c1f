#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/error.hpp"

namespace tamo::platform {

/// An application that runs. Either member may be absent, for a process that is no bundle.
struct RunningApplication {
  std::optional<std::string> bundleIdentifier;
  std::optional<std::string> bundlePath;
};

/// The user's applications. Main thread.
class Workspace {
 public:
  /// Absent means success.
  using Completion = std::function<void(std::optional<Error>)>;

  virtual ~Workspace() = default;

  /// The applications that run, this process among them. On macOS the list changes only when the main loop
  /// turns, so a caller that waits for a change has to suspend, not to block.
  [[nodiscard]] virtual std::vector<RunningApplication> runningApplications() = 0;

  /// Opens the application at `path` and brings it to the front; one that runs already is only brought to the
  /// front. A copy that runs from another path doesn't count, whatever it is called. Returns at once;
  /// `completion` is called exactly once, on any thread.
  virtual void openApplication(const std::string& path, Completion completion) = 0;
};

}  // namespace tamo::platform

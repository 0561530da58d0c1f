#pragma once

#include "platform/workspace.hpp"

namespace tamo::macos {

/// The user's applications as the window system knows them. A completion is called on a queue of the
/// system's.
class MacWorkspace final : public platform::Workspace {
 public:
  [[nodiscard]] std::vector<platform::RunningApplication> runningApplications() override;
  /// A path that is no UTF-8 fails with a placeholder.
  void openApplication(const std::string& path, Completion completion) override;
};

}  // namespace tamo::macos

#pragma once

#include <string>
#include <utility>

#include "launch/launchctl.hpp"
#include "platform/bundles.hpp"
#include "platform/files.hpp"
#include "platform/log.hpp"

namespace tamo {

/// Compares the definition that launchd holds for the Core's job with the one in the running application's
/// own bundle (not the application around it), which is the one that registering would hand to launchd. Keeps
/// nothing: every call reads both afresh. Main thread.
class DefinitionCheck {
 public:
  /// What the check needs. The references must outlive the DefinitionCheck.
  struct Needs {
    const platform::FileReader& files;
    const platform::Bundles& bundles;
    Launchctl& launchctl;
    platform::Logger& log;
    /// The launchd label of the job, which names its property list.
    std::string label;
  };

  explicit DefinitionCheck(Needs needs) : needs_(std::move(needs)) {}

  /// Whether the agent must be reseated because its definition changed. Logs one line with both sides. Never
  /// fails: a side that cannot be read is unknown, and an unknown side answers false. Blocks as long as a
  /// print of the job does.
  [[nodiscard]] bool definitionChanged();

 private:
  Needs needs_;
};

}  // namespace tamo

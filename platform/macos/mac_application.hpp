#pragma once

#include "platform/application.hpp"

namespace tamo::macos {

/// The shared application object, which is made when it is first asked for. Arguments that it doesn't know
/// are no files to open, and an Objective-C exception in its frames ends the process.
class MacApplication final : public platform::Application {
 public:
  void becomeAccessory() override;
  /// Replaces an earlier delegate.
  void setDelegate(platform::ApplicationDelegate& delegate) override;
  /// The system does not slow the process down from here on as one that is idle.
  void run() override;
  void terminate() override;
};

}  // namespace tamo::macos

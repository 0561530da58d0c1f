#pragma once

#include "platform/application.hpp"

namespace tamo::macos {

/// The shared application object, which is made when it is first asked for.
class MacApplication final : public platform::Application {
 public:
  void becomeAccessory() override;
  /// Replaces an earlier delegate.
  void setDelegate(platform::ApplicationDelegate& delegate) override;
  void run() override;
  void terminate() override;
};

}  // namespace tamo::macos

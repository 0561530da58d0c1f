#include "app/core_main.hpp"

#include <utility>

#include "app/core_delegate.hpp"

namespace tamo::CoreMain {

/// An accessory before anything else, so that no icon shows up in the Dock. The loop tells the delegate of
/// the launch, so the delegate is there before it runs.
void main(const platform::Platform& platform, const TamoCoreConfig& config,
          std::vector<std::string> arguments) {
  platform.application.becomeAccessory();
  CoreDelegate delegate(platform, config, std::move(arguments));
  platform.application.setDelegate(delegate);
  platform.application.run();
}

}  // namespace tamo::CoreMain

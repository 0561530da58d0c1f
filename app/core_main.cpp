#include "app/core_main.hpp"

#include <utility>

#include "app/core_delegate.hpp"

namespace tamo::CoreMain {

void main(const platform::Platform& platform, const TamoCoreConfig& config,
          std::vector<std::string> arguments) {
  platform.application.becomeAccessory();
  CoreDelegate delegate(platform, config, std::move(arguments));
  platform.application.setDelegate(delegate);
  platform.application.run();
}

}  // namespace tamo::CoreMain

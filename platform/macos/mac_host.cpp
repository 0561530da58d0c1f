#include "platform/macos/mac_host.hpp"

#include "values/fatal.hpp"

namespace tamo::platform {

std::unique_ptr<Host> makeHost() {
  values::setLastWords(&macos::logAtFaultLevel);
  return std::make_unique<macos::MacHost>();
}

}  // namespace tamo::platform

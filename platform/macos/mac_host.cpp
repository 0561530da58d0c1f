#include "platform/macos/mac_host.hpp"

namespace tamo::platform {

std::unique_ptr<Host> makeHost() {
  return std::make_unique<macos::MacHost>();
}

}  // namespace tamo::platform

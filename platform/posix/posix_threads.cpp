#include "platform/posix/posix_threads.hpp"

#include <system_error>
#include <thread>
#include <utility>

namespace tamo::platform {

bool PosixThreads::detach(std::function<void()> work) {
  try {
    std::thread(std::move(work)).detach();
    return true;
  } catch (const std::system_error&) {
    return false;
  }
}

}  // namespace tamo::platform

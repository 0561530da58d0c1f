#include "platform/posix/posix_threads.hpp"

#include <system_error>
#include <thread>
#include <utility>

#include "platform/fatal.hpp"

namespace tamo::platform {

void PosixThreads::detach(std::function<void()> work) {
  try {
    std::thread(std::move(work)).detach();
  } catch (const std::system_error&) {
    fatal("no thread can be started");
  }
}

}  // namespace tamo::platform

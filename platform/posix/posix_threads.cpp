#include "platform/posix/posix_threads.hpp"

#include <system_error>
#include <thread>
#include <utility>

namespace tamo::platform {

/// That there is no thread to be had is an answer and no error: who asks for one can do without.
bool PosixThreads::detach(std::function<void()> work) {
  try {
    std::thread(std::move(work)).detach();
    return true;
  } catch (const std::system_error&) {
    return false;
  }
}

}  // namespace tamo::platform

#include "hardstop/stop_failed.hpp"

namespace tamo {

/// The main thread sets what the watcher's thread reads; nothing else is shared by the two.
bool StopFailed::value() const {
  const std::lock_guard hold(lock_);
  return failed_;
}

void StopFailed::set() {
  const std::lock_guard hold(lock_);
  failed_ = true;
}

}  // namespace tamo

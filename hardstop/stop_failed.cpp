#include "hardstop/stop_failed.hpp"

namespace tamo {

bool StopFailed::value() const {
  const std::lock_guard hold(lock_);
  return failed_;
}

void StopFailed::set() {
  const std::lock_guard hold(lock_);
  failed_ = true;
}

}  // namespace tamo

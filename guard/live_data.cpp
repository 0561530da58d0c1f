#include "guard/live_data.hpp"

namespace tamo {

/// Asked once: a copy that is moved, or replaced by another one while it runs, neither gains nor loses the
/// right.
bool LiveData::current() const {
  std::call_once(once_, [this] {
    current_ = LiveDataGuard::mayOpenLive(bundles_.mainBundlePath(), LiveDataGuard::realHome(user_), files_);
  });
  return current_;
}

std::string LiveData::dataHome() const {
  return LiveDataGuard::dataHome(access());
}

std::string LiveData::clamp(std::string_view path) const {
  return LiveDataGuard::clamp(path, access(), files_);
}

LiveDataGuard::Access LiveData::access() const {
  return {.live = current(), .real = LiveDataGuard::realHome(user_)};
}

}  // namespace tamo

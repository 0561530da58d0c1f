#include "platform/posix/posix_clock.hpp"

#include <cerrno>
#include <ctime>

#include "platform/posix/host_differences.hpp"
#include "values/fatal.hpp"

namespace tamo::platform {

std::chrono::system_clock::time_point PosixClock::wallNow() const {
  return std::chrono::system_clock::now();
}

Instant PosixClock::monotonicNow() const {
  timespec now{};
  if (::clock_gettime(sleepCountingClock(), &now) != 0)
    values::fatal("the host has no clock that counts sleep");
  return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
}

void PosixClock::sleep(std::chrono::nanoseconds duration) {
  if (duration <= std::chrono::nanoseconds::zero()) return;
  const auto seconds = std::chrono::floor<std::chrono::seconds>(duration);
  timespec left{};
  left.tv_sec = static_cast<time_t>(seconds.count());
  left.tv_nsec = static_cast<long>((duration - seconds).count());
  // An interrupted sleep leaves its rest in `left`, so a signal does not shorten it.
  while (::nanosleep(&left, &left) != 0 && errno == EINTR) {
  }
}

}  // namespace tamo::platform

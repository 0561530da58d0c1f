#include "platform/posix/host_differences.hpp"

#if defined(__APPLE__)
#include <crt_externs.h>
#else
#include <unistd.h>
#endif

namespace tamo::platform {

#if defined(__APPLE__)

clockid_t sleepCountingClock() {
  return CLOCK_MONOTONIC_RAW;
}

char* const* ownEnvironment() {
  return *_NSGetEnviron();
}

short inheritanceFlag() {
  return POSIX_SPAWN_CLOEXEC_DEFAULT;
}

bool inheritOnlyStreams(posix_spawn_file_actions_t& actions) {
  return ::posix_spawn_file_actions_addinherit_np(&actions, 0) == 0;
}

#else

clockid_t sleepCountingClock() {
  return CLOCK_BOOTTIME;
}

char* const* ownEnvironment() {
  return environ;
}

short inheritanceFlag() {
  return 0;
}

bool inheritOnlyStreams(posix_spawn_file_actions_t& actions) {
  return ::posix_spawn_file_actions_addclosefrom_np(&actions, 3) == 0;
}

#endif

}  // namespace tamo::platform

#include "platform/posix/host_differences.hpp"

#if defined(__APPLE__)
#include <crt_externs.h>
#include <fcntl.h>
#endif
#include <unistd.h>

namespace tamo::platform {

#if defined(__APPLE__)

clockid_t sleepCountingClock() {
  return CLOCK_MONOTONIC_RAW;
}

char* const* ownEnvironment() {
  return *_NSGetEnviron();
}

int temporaryDirectoryName() {
  // What Foundation asks first, too. It is made when it is missing, and ends in "/" (String+Path.swift of
  // swift-foundation, temporaryDirectoryPath; confstr.c of Libc-1725.0.11, macOS 26).
  return _CS_DARWIN_USER_TEMP_DIR;
}

short inheritanceFlag() {
  return POSIX_SPAWN_CLOEXEC_DEFAULT;
}

bool inheritOnlyStreams(posix_spawn_file_actions_t& actions) {
  // To inherit a descriptor that is not open fails the whole spawn (EBADF in exec_handle_file_actions, XNU
  // kern_exec.c), and to inherit one that closes on exec, a lock it may be, would keep it open in the tool.
  const int flags = ::fcntl(STDIN_FILENO, F_GETFD);
  if (flags == -1 || (flags & FD_CLOEXEC) != 0) return true;
  return ::posix_spawn_file_actions_addinherit_np(&actions, STDIN_FILENO) == 0;
}

#else

clockid_t sleepCountingClock() {
  return CLOCK_BOOTTIME;
}

char* const* ownEnvironment() {
  return environ;
}

int temporaryDirectoryName() {
  return -1;
}

short inheritanceFlag() {
  return 0;
}

bool inheritOnlyStreams(posix_spawn_file_actions_t& actions) {
  return ::posix_spawn_file_actions_addclosefrom_np(&actions, 3) == 0;
}

#endif

}  // namespace tamo::platform

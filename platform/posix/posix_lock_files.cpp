#include "platform/posix/posix_lock_files.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "platform/posix/descriptor.hpp"

namespace tamo::platform {

/// A link that was planted under the name is not followed, and no tool inherits the lock.
int PosixLockFiles::open(const std::string& path) {
  return uninterrupted([&] { return ::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600); });
}

bool PosixLockFiles::tryLock(int descriptor) {
  return ::flock(descriptor, LOCK_EX | LOCK_NB) == 0;
}

void PosixLockFiles::unlock(int descriptor) {
  // Closing drops the lock as well, so a failure here has no consequence.
  static_cast<void>(::flock(descriptor, LOCK_UN));
}

void PosixLockFiles::close(int descriptor) {
  static_cast<void>(::close(descriptor));
}

}  // namespace tamo::platform

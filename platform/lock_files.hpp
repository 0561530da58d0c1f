#pragma once

#include <string>

namespace tamo::platform {

/// Advisory locks on whole files, held between processes. The kernel drops a lock when the process ends. One
/// thread.
class LockFiles {
 public:
  virtual ~LockFiles() = default;

  /// Opens the file read-write and closed in every tool that is started, creating it with mode 0600 if
  /// missing. Refuses a symbolic link in the last component. Gives the descriptor, which the caller owns, or
  /// -1.
  [[nodiscard]] virtual int open(const std::string& path) = 0;

  /// Tries once for the exclusive lock, without waiting.
  [[nodiscard]] virtual bool tryLock(int descriptor) = 0;

  virtual void unlock(int descriptor) = 0;
  virtual void close(int descriptor) = 0;
};

}  // namespace tamo::platform

#pragma once

#include "platform/lock_files.hpp"

namespace tamo::platform {

/// Locks of the kind that flock takes, on the host's own paths. They belong to the open file, so two opens in
/// one process exclude each other as two processes do.
class PosixLockFiles final : public LockFiles {
 public:
  [[nodiscard]] int open(const std::string& path) override;
  [[nodiscard]] bool tryLock(int descriptor) override;
  void unlock(int descriptor) override;
  void close(int descriptor) override;
};

}  // namespace tamo::platform

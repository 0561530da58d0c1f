#pragma once

#include "platform/posix/posix_lock_files.hpp"
#include "platform/stage/stage_root.hpp"

namespace tamo::stage {

/// Lock files of the stage: real locks, held between real processes. No known difference from a Mac.
class StageLockFiles final : public platform::LockFiles {
 public:
  explicit StageLockFiles(const StageRoot& root) : root_(root) {}

  [[nodiscard]] int open(const std::string& path) override;
  [[nodiscard]] bool tryLock(int descriptor) override { return host_.tryLock(descriptor); }
  void unlock(int descriptor) override { host_.unlock(descriptor); }
  void close(int descriptor) override { host_.close(descriptor); }

 private:
  const StageRoot root_;
  platform::PosixLockFiles host_;
};

}  // namespace tamo::stage

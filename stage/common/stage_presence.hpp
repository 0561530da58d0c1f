#pragma once

#include <string>
#include <sys/types.h>

/// Whether a stage is still there. Whatever lives on a stage asks once a second and ends with it, so that
/// nothing outlives a stage that was simply deleted.
namespace tamo::stage {

class StagePresence {
 public:
  /// `directory` is there at this moment; it is known by its identity from now on, so another stage laid at
  /// the same place is not taken for it.
  explicit StagePresence(const std::string& directory);

  [[nodiscard]] bool isThere() const;

 private:
  std::string directory_;
  dev_t device_ = 0;
  ino_t inode_ = 0;
};

}  // namespace tamo::stage

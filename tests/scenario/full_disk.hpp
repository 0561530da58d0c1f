#pragma once

#include <string>

#include "platform/stage/stage_root.hpp"

namespace tamo::scenario {

/// Lets the stage's /Applications run out of space after one megabyte: by a small file system of its own
/// where the machine lets a test mount one, otherwise by a limit on the size of the files that ditto writes.
/// Must be destroyed before the stage is struck.
class FullDisk {
 public:
  explicit FullDisk(const stage::StageRoot& root);
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;
  ~FullDisk();

  /// "a file system" or "a limit", for the test's report.
  [[nodiscard]] const char* kind() const { return mounted_ ? "a file system" : "a limit"; }

 private:
  std::string folder_;
  bool mounted_ = false;
};

}  // namespace tamo::scenario

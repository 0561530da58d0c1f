#include "stage/common/stage_presence.hpp"

#include <sys/stat.h>

namespace tamo::stage {

StagePresence::StagePresence(const std::string& directory) : directory_(directory) {
  struct stat seen{};
  if (::stat(directory_.c_str(), &seen) != 0) return;
  device_ = seen.st_dev;
  inode_ = seen.st_ino;
}

/// By number and not by name: another stage may have been laid where this one was.
bool StagePresence::isThere() const {
  struct stat seen{};
  return ::stat(directory_.c_str(), &seen) == 0 && seen.st_dev == device_ && seen.st_ino == inode_;
}

}  // namespace tamo::stage

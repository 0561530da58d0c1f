#include "platform/stage/stage_lock_files.hpp"

namespace tamo::stage {

int StageLockFiles::open(const std::string& path) {
  // The last component stays as it stands, so that a link there is met and refused.
  const auto place = root_.entry(path);
  return place ? host_.open(*place) : -1;
}

}  // namespace tamo::stage

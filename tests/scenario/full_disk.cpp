#include "scenario/full_disk.hpp"

#include <gtest/gtest.h>
#include <sys/mount.h>

namespace tamo::scenario {

FullDisk::FullDisk(const stage::StageRoot& root) : folder_(root.host("/Applications")) {
  mounted_ = ::mount("none", folder_.c_str(), "tmpfs", 0, "size=1m,mode=0755") == 0;
  if (!mounted_) root.set("tool-ditto", "* cut 65536");
}

FullDisk::~FullDisk() {
  if (!mounted_) return;
  EXPECT_EQ(::umount2(folder_.c_str(), MNT_DETACH), 0);
}

}  // namespace tamo::scenario

#include "hardstop/stop_failed.hpp"

#include <gtest/gtest.h>
#include <thread>

namespace tamo {
namespace {

TEST(StopFailedTest, IsNotSetAtFirst) {
  EXPECT_FALSE(StopFailed().value());
}

TEST(StopFailedTest, StaysSet) {
  StopFailed failed;
  failed.set();
  EXPECT_TRUE(failed.value());
  failed.set();
  EXPECT_TRUE(failed.value());
}

TEST(StopFailedTest, IsSeenByAnotherThread) {
  StopFailed failed;
  bool seen = false;
  std::thread watcher([&failed, &seen] {
    // Bounded, so that a flag that never comes fails the test instead of hanging it.
    for (int look = 0; look < 10'000'000 && !seen; ++look) {
      seen = failed.value();
      std::this_thread::yield();
    }
  });
  failed.set();
  watcher.join();
  EXPECT_TRUE(seen);
}

}  // namespace
}  // namespace tamo

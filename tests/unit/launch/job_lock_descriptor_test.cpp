#include <gtest/gtest.h>

#include "fakes/fake_platform.hpp"
#include "launch/job_lock.hpp"

/// Every descriptor that is not negative is one, the least included: a process that was started without a
/// standard input gets it for the first file that it opens.
namespace tamo {
namespace {

class FirstDescriptor final : public platform::LockFiles {
 public:
  [[nodiscard]] int open(const std::string& /*path*/) override { return 0; }
  [[nodiscard]] bool tryLock(int descriptor) override { return descriptor == 0; }
  void unlock(int descriptor) override { unlocked = descriptor; }
  void close(int descriptor) override { closed = descriptor; }

  int unlocked = -1;
  int closed = -1;
};

class JobLockDescriptorTest : public ::testing::Test {
 protected:
  fakes::FakePlatform fake;
  FirstDescriptor files;
  JobLock lock{{.lockFiles = files, .files = fake.files, .clock = fake.clock, .label = "l"}};
};

TEST_F(JobLockDescriptorTest, TheLeastDescriptorHoldsTheLock) {
  EXPECT_EQ(lock.lockJob(), 0);
  EXPECT_EQ(files.closed, -1);
}

TEST_F(JobLockDescriptorTest, TheLeastDescriptorIsUnlockedAndClosed) {
  lock.unlockJob(0);
  EXPECT_EQ(files.unlocked, 0);
  EXPECT_EQ(files.closed, 0);
}

}  // namespace
}  // namespace tamo

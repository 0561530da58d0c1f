#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "fakes/fake_platform.hpp"
#include "launch/job_lock.hpp"

/// When the minute of the job lock begins, which file it is about, and what is left alone.
namespace tamo {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Forwards, and takes its time to open a file and for each try.
class SlowLockFiles final : public platform::LockFiles {
 public:
  SlowLockFiles(platform::LockFiles& files, fakes::FakeClock& clock) : files_(files), clock_(clock) {}
  std::chrono::nanoseconds opening{0};
  std::chrono::nanoseconds trying{0};

  [[nodiscard]] int open(const std::string& path) override {
    clock_.advanceTo(clock_.monotonicNow() + opening);
    return files_.open(path);
  }
  [[nodiscard]] bool tryLock(int descriptor) override {
    clock_.advanceTo(clock_.monotonicNow() + trying);
    return files_.tryLock(descriptor);
  }
  void unlock(int descriptor) override { files_.unlock(descriptor); }
  void close(int descriptor) override { files_.close(descriptor); }

 private:
  platform::LockFiles& files_;
  fakes::FakeClock& clock_;
};

class JobLockWaitTest : public ::testing::Test {
 protected:
  JobLock lockOf(platform::LockFiles& files, const std::string& label) {
    return JobLock({.lockFiles = files, .files = fake.files, .clock = fake.clock, .label = label});
  }

  fakes::FakePlatform fake;
  SlowLockFiles slow{fake.lockFiles, fake.clock};
};

TEST_F(JobLockWaitTest, TheMinuteBeginsWhenTheFileIsOpen) {
  slow.opening = 40s;
  fake.lockFiles.heldUntil = 95s;
  EXPECT_EQ(lockOf(slow, "l").lockJob(), fakes::FakeLockFiles::descriptor);
}

TEST_F(JobLockWaitTest, TriesThatTakeTimeAreFewerInTheMinute) {
  slow.trying = 10s;
  fake.lockFiles.heldUntil = 24h;
  EXPECT_EQ(lockOf(slow, "l").lockJob(), -1);
  EXPECT_EQ(fake.ledger.count("lock: try"), 6U);
}

TEST_F(JobLockWaitTest, TheFileIsOpenedOnceHoweverOftenItIsTried) {
  fake.lockFiles.heldUntil = 30s;
  EXPECT_EQ(lockOf(fake.lockFiles, "l").lockJob(), fakes::FakeLockFiles::descriptor);
  EXPECT_EQ(fake.ledger.count("lock: open"), 1U);
  EXPECT_EQ(fake.ledger.count("lock: unlock"), 0U);
}

TEST_F(JobLockWaitTest, TheFileIsNamedAfterTheLabel) {
  EXPECT_EQ(lockOf(fake.lockFiles, "another.label").lockJob(), fakes::FakeLockFiles::descriptor);
  EXPECT_EQ(fake.ledger.texts().front(), "lock: open /tmp/of-the-user/another.label.job.lock");
}

TEST_F(JobLockWaitTest, EveryLockHasAMinuteOfItsOwn) {
  auto lock = lockOf(fake.lockFiles, "l");
  fake.lockFiles.heldUntil = 59s;
  EXPECT_EQ(lock.lockJob(), fakes::FakeLockFiles::descriptor);
  lock.unlockJob(fakes::FakeLockFiles::descriptor);
  fake.lockFiles.heldUntil = 118s;
  EXPECT_EQ(lock.lockJob(), fakes::FakeLockFiles::descriptor);
}

TEST_F(JobLockWaitTest, ADeadlineThatNoClockReachesIsFatal) {
  fake.clock.advanceTo(std::chrono::nanoseconds::max() - 60s + 1ns);
  EXPECT_DEATH(static_cast<void>(lockOf(fake.lockFiles, "l").lockJob()), "fatal: a deadline overflows");
}

TEST_F(JobLockWaitTest, TheFileIsNeitherReadNorWrittenNorRemoved) {
  auto lock = lockOf(fake.lockFiles, "l");
  lock.unlockJob(lock.lockJob());
  EXPECT_THAT(fake.ledger.texts(), ElementsAre("lock: open /tmp/of-the-user/l.job.lock", "lock: try",
                                               "lock: unlock 7", "lock: close 7"));
}

TEST_F(JobLockWaitTest, NoNegativeNumberIsADescriptor) {
  auto lock = lockOf(fake.lockFiles, "l");
  for (const std::int32_t none : {-1, -2, -7, std::numeric_limits<std::int32_t>::min()})
    lock.unlockJob(none);
  EXPECT_THAT(fake.ledger.texts(), IsEmpty());
}

}  // namespace
}  // namespace tamo

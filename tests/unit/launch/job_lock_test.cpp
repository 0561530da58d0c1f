#include "launch/job_lock.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/fake_platform.hpp"

namespace tamo {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class JobLockTest : public ::testing::Test {
 protected:
  fakes::FakePlatform fake;
  JobLock lock{{.lockFiles = fake.lockFiles,
                .files = fake.files,
                .clock = fake.clock,
                .label = "studio.pell.tamo.core"}};
};

TEST_F(JobLockTest, AFreeLockIsGainedAtOnce) {
  EXPECT_EQ(lock.lockJob(), fakes::FakeLockFiles::descriptor);
  EXPECT_TRUE(fake.lockFiles.held);
  EXPECT_THAT(fake.ledger.texts(),
              ElementsAre("lock: open /tmp/of-the-user/studio.pell.tamo.core.job.lock", "lock: try"));
}

TEST_F(JobLockTest, ADirectoryWithoutASlashAtItsEndGetsOne) {
  fake.files.temporary = "/tmp/of-the-user";
  EXPECT_EQ(lock.lockJob(), fakes::FakeLockFiles::descriptor);
  EXPECT_EQ(fake.ledger.texts().front(), "lock: open /tmp/of-the-user/studio.pell.tamo.core.job.lock");
}

TEST_F(JobLockTest, AFileThatDoesNotOpenIsMinusOneAtOnce) {
  fake.lockFiles.opens = false;
  EXPECT_EQ(lock.lockJob(), -1);
  EXPECT_EQ(fake.ledger.texts().size(), 1U);
  EXPECT_EQ(fake.clock.monotonicNow(), 0ns);
}

TEST_F(JobLockTest, AHeldLockIsTriedEvery100Milliseconds) {
  fake.lockFiles.heldUntil = 150ms;
  EXPECT_EQ(lock.lockJob(), fakes::FakeLockFiles::descriptor);
  EXPECT_THAT(
      fake.ledger.textsOf({"lock: try", "clock: "}),
      ElementsAre("lock: try", "clock: sleep 100 ms", "lock: try", "clock: sleep 100 ms", "lock: try"));
}

TEST_F(JobLockTest, TheLockIsGainedWithinOnePollOfItsRelease) {
  for (const auto release : {1ms, 100ms, 101ms, 30s + 50ms, 59s + 999ms, 60s + 0ms}) {
    fakes::FakePlatform fresh;
    fresh.lockFiles.heldUntil = release;
    JobLock second{{.lockFiles = fresh.lockFiles, .files = fresh.files, .clock = fresh.clock, .label = "l"}};
    EXPECT_EQ(second.lockJob(), fakes::FakeLockFiles::descriptor) << release.count();
    EXPECT_LT(fresh.clock.monotonicNow() - release, 100ms) << release.count();
    EXPECT_EQ(fresh.ledger.count("lock: close"), 0U);
  }
}

TEST_F(JobLockTest, ALockReleasedJustAfterTheDeadlineIsNotGained) {
  fake.lockFiles.heldUntil = 60s + 1ns;
  EXPECT_EQ(lock.lockJob(), -1);
  EXPECT_EQ(fake.clock.monotonicNow(), 60s);
  EXPECT_EQ(fake.ledger.texts().back(), "lock: close 7");
}

TEST_F(JobLockTest, TheLastTryIsAtTheDeadline) {
  fake.lockFiles.heldUntil = 24h;
  EXPECT_EQ(lock.lockJob(), -1);
  EXPECT_EQ(fake.ledger.count("lock: try"), 601U);
  EXPECT_EQ(fake.ledger.count("clock: sleep 100 ms"), 600U);
  EXPECT_EQ(fake.ledger.count("lock: close"), 1U);
  EXPECT_EQ(fake.ledger.count("lock: unlock"), 0U);
}

TEST_F(JobLockTest, AWallClockSetForwardDoesNotEndTheWait) {
  fake.clock.at(1s, [this] { fake.clock.wallAtZero += 24h; });
  fake.lockFiles.heldUntil = 40s;
  EXPECT_EQ(lock.lockJob(), fakes::FakeLockFiles::descriptor);
}

TEST_F(JobLockTest, AWallClockSetBackDoesNotStretchTheWait) {
  fake.clock.at(1s, [this] { fake.clock.wallAtZero -= 24h; });
  fake.lockFiles.heldUntil = 24h;
  EXPECT_EQ(lock.lockJob(), -1);
  EXPECT_EQ(fake.clock.monotonicNow(), 60s);
}

TEST_F(JobLockTest, NoTemporaryDirectoryIsFatal) {
  fake.files.temporary = std::nullopt;
  EXPECT_DEATH(static_cast<void>(lock.lockJob()), "fatal: there is no temporary directory for the job lock");
}

TEST_F(JobLockTest, UnlockingReleasesAndThenCloses) {
  lock.unlockJob(7);
  EXPECT_THAT(fake.ledger.texts(), ElementsAre("lock: unlock 7", "lock: close 7"));
}

TEST_F(JobLockTest, DescriptorZeroIsUnlockedLikeAnyOther) {
  lock.unlockJob(0);
  EXPECT_THAT(fake.ledger.texts(), ElementsAre("lock: unlock 0", "lock: close 0"));
}

TEST_F(JobLockTest, WithoutALockNothingIsUnlocked) {
  lock.unlockJob(-1);
  EXPECT_THAT(fake.ledger.texts(), IsEmpty());
}

}  // namespace
}  // namespace tamo

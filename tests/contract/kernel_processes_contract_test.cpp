#include <limits>

#include "contract/backend.hpp"
#include "contract/child.hpp"

namespace tamo::contract {
namespace {

class KernelProcessesContract : public Contract {
 protected:
  [[nodiscard]] platform::ProcessInfo seen(std::int32_t pid) const {
    const auto info = kernel.info(pid);
    EXPECT_TRUE(info) << pid;
    return info.value_or(platform::ProcessInfo{});
  }

  platform::KernelProcesses& kernel = platform.kernelProcesses;
};

TEST_P(KernelProcessesContract, ThisProcessIsAliveInItsGroup) {
  EXPECT_EQ(kernel.ownPid(), ::getpid());
  EXPECT_EQ(kernel.ownGroup(), ::getpgrp());
  const auto info = seen(kernel.ownPid());
  EXPECT_EQ(info.group, ::getpgrp());
  EXPECT_FALSE(info.zombie);
  EXPECT_LT(info.startMicroseconds, 1'000'000U);
}

TEST_P(KernelProcessesContract, TheStartTimeStays) {
  const Child child(sleepUntilKilled);
  const auto first = seen(child.pid());
  const auto second = seen(child.pid());
  EXPECT_EQ(first.startSeconds, second.startSeconds);
  EXPECT_EQ(first.startMicroseconds, second.startMicroseconds);
}

TEST_P(KernelProcessesContract, TheStartTimeOutlivesTheProcess) {
  const Child child(sleepUntilKilled);
  const auto alive = seen(child.pid());
  kernel.kill(child.pid());
  child.awaitExit();
  if (!backend->seesZombies()) GTEST_SKIP() << "the kernel does not tell of zombies";
  const auto dead = seen(child.pid());
  EXPECT_TRUE(dead.zombie);
  EXPECT_EQ(dead.startSeconds, alive.startSeconds);
  EXPECT_EQ(dead.startMicroseconds, alive.startMicroseconds);
}

TEST_P(KernelProcessesContract, AReapedProcessIsGone) {
  Child child([] {});
  const auto pid = child.pid();
  child.reap();
  EXPECT_FALSE(kernel.info(pid));
}

TEST_P(KernelProcessesContract, WhatIsNoPidIsNoProcess) {
  for (const std::int32_t pid : {0, -1, -::getpid(), std::numeric_limits<std::int32_t>::min()})
    EXPECT_FALSE(kernel.info(pid)) << pid;
  EXPECT_FALSE(kernel.info(std::numeric_limits<std::int32_t>::max()));
}

TEST_P(KernelProcessesContract, AGroupLeaderShowsItsOwnGroup) {
  const Child leader(sleepUntilKilled);
  EXPECT_EQ(seen(leader.pid()).group, ::getpgrp());
  ASSERT_EQ(::setpgid(leader.pid(), leader.pid()), 0);
  EXPECT_EQ(seen(leader.pid()).group, leader.pid());
}

TEST_P(KernelProcessesContract, AKillIsOneThatNobodyCanIgnore) {
  Child child([] {
    std::signal(SIGTERM, SIG_IGN);
    sleepUntilKilled();
  });
  kernel.kill(child.pid());
  const int status = child.reap();
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGKILL);
}

TEST_P(KernelProcessesContract, AGroupKillReachesTheWholeGroupAndNobodyElse) {
  Child leader(sleepUntilKilled);
  Child member(sleepUntilKilled);
  const Child stranger(sleepUntilKilled);
  ASSERT_EQ(::setpgid(leader.pid(), leader.pid()), 0);
  ASSERT_EQ(::setpgid(member.pid(), leader.pid()), 0);
  kernel.killGroup(leader.pid());
  const int ofLeader = leader.reap();
  const int ofMember = member.reap();
  EXPECT_EQ(WTERMSIG(ofLeader), SIGKILL);
  EXPECT_EQ(WTERMSIG(ofMember), SIGKILL);
  EXPECT_FALSE(seen(stranger.pid()).zombie);
}

TEST_P(KernelProcessesContract, KillingTheDeadHarmsNobody) {
  const Child child([] {});
  child.awaitExit();
  kernel.kill(child.pid());
  const auto dead = kernel.info(child.pid());
  EXPECT_TRUE(!dead || dead->zombie);
  EXPECT_EQ(dead.has_value(), backend->seesZombies());
}

TAMO_CONTRACT(KernelProcessesContract);

}  // namespace
}  // namespace tamo::contract

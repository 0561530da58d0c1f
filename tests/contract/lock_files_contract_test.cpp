#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>

#include "contract/backend.hpp"
#include "contract/child.hpp"

namespace tamo::contract {
namespace {

class LockFilesContract : public Contract {
 protected:
  /// The lock file opened, which the test cannot do without.
  [[nodiscard]] int opened() {
    const int descriptor = locks.open(path("job.lock"));
    EXPECT_GE(descriptor, 0);
    return descriptor;
  }

  platform::LockFiles& locks = platform.lockFiles;
};

TEST_P(LockFilesContract, AMissingFileIsMadeForItsOwnerAlone) {
  const auto mask = ::umask(0);
  const int descriptor = opened();
  ::umask(mask);
  struct stat found{};
  EXPECT_EQ(::fstat(descriptor, &found), 0);
  EXPECT_EQ(found.st_mode & 07777, 0600U);
  EXPECT_EQ(::fcntl(descriptor, F_GETFL) & O_ACCMODE, O_RDWR);
  EXPECT_NE(::fcntl(descriptor, F_GETFD) & FD_CLOEXEC, 0);
  locks.close(descriptor);
}

TEST_P(LockFilesContract, AnExistingFileIsOpenedAsItIs) {
  lay("job.lock", "content");
  const int descriptor = opened();
  EXPECT_TRUE(locks.tryLock(descriptor));
  locks.close(descriptor);
  EXPECT_EQ(contentsOf("job.lock"), "content");
}

TEST_P(LockFilesContract, ALinkAtTheEndIsRefused) {
  lay("target", "");
  std::filesystem::create_symlink("target", host("job.lock"));
  EXPECT_EQ(locks.open(path("job.lock")), -1);
}

TEST_P(LockFilesContract, ALinkOnTheWayIsFollowed) {
  std::filesystem::create_directory(host("real"));
  std::filesystem::create_symlink("real", host("linked"));
  const int descriptor = locks.open(path("linked/job.lock"));
  EXPECT_GE(descriptor, 0);
  locks.close(descriptor);
  EXPECT_TRUE(std::filesystem::exists(host("real/job.lock")));
}

TEST_P(LockFilesContract, AFileThatCannotBeMadeGivesNoDescriptor) {
  lay("file", "");
  EXPECT_EQ(locks.open(path("missing/job.lock")), -1);
  EXPECT_EQ(locks.open(path("file/job.lock")), -1);
}

TEST_P(LockFilesContract, ASecondOpenWaitsForTheUnlock) {
  const int first = opened();
  const int second = opened();
  EXPECT_TRUE(locks.tryLock(first));
  EXPECT_FALSE(locks.tryLock(second));
  locks.unlock(first);
  EXPECT_TRUE(locks.tryLock(second));
  locks.close(first);
  locks.close(second);
}

// The file is also locked by what is not this system, with the call that everybody has for it.
TEST_P(LockFilesContract, AnotherProgramsFlockAndOursKeepEachOtherOut) {
  const int descriptor = opened();
  const platform::Descriptor foreign(::open(host("job.lock").c_str(), O_RDONLY | O_CLOEXEC));
  ASSERT_EQ(::flock(foreign.get(), LOCK_EX | LOCK_NB), 0);
  EXPECT_FALSE(locks.tryLock(descriptor));
  ASSERT_EQ(::flock(foreign.get(), LOCK_SH), 0);
  EXPECT_FALSE(locks.tryLock(descriptor));
  ASSERT_EQ(::flock(foreign.get(), LOCK_UN), 0);
  EXPECT_TRUE(locks.tryLock(descriptor));
  EXPECT_NE(::flock(foreign.get(), LOCK_EX | LOCK_NB), 0);
  EXPECT_NE(::flock(foreign.get(), LOCK_SH | LOCK_NB), 0);
  locks.unlock(descriptor);
  EXPECT_EQ(::flock(foreign.get(), LOCK_EX | LOCK_NB), 0);
  locks.close(descriptor);
}

TEST_P(LockFilesContract, TheFileStaysAfterUseAsItWas) {
  lay("job.lock", "content");
  std::filesystem::permissions(host("job.lock"), std::filesystem::perms(0640));
  const int descriptor = opened();
  EXPECT_TRUE(locks.tryLock(descriptor));
  locks.unlock(descriptor);
  locks.close(descriptor);
  EXPECT_EQ(contentsOf("job.lock"), "content");
  EXPECT_EQ(std::filesystem::status(host("job.lock")).permissions(), std::filesystem::perms(0640));
}

TEST_P(LockFilesContract, ClosingDropsTheLock) {
  const int first = opened();
  const int second = opened();
  EXPECT_TRUE(locks.tryLock(first));
  locks.close(first);
  EXPECT_TRUE(locks.tryLock(second));
  locks.close(second);
}

TEST_P(LockFilesContract, AnotherProcessHoldsTheLockUntilItDies) {
  lay("holds", "");
  Child other([this] {
    const int held = locks.open(path("job.lock"));
    if (locks.tryLock(held)) lay("holds", "yes");
    sleepUntilKilled();
  });
  ASSERT_TRUE(eventually([this] { return contentsOf("holds") == "yes"; }));
  const int descriptor = opened();
  EXPECT_FALSE(locks.tryLock(descriptor));
  ::kill(other.pid(), SIGKILL);
  other.reap();
  EXPECT_TRUE(locks.tryLock(descriptor));
  locks.close(descriptor);
}

TAMO_CONTRACT(LockFilesContract);

}  // namespace
}  // namespace tamo::contract

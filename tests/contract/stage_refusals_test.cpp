#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

#include "contract/refused_call.hpp"
#include "contract/temporary_stage.hpp"
#include "platform/posix/byte_stream.hpp"
#include "platform/stage/background_program.hpp"
#include "platform/stage/launchd_wire.hpp"
#include "platform/stage/privileges.hpp"
#include "platform/stage/run_loop.hpp"
#include "platform/stage/stage_kernel_processes.hpp"
#include "platform/stage/stream_sockets.hpp"
#include "platform/stage/url_inbox.hpp"

/// What the stage's adapters make of a kernel that says no.
namespace tamo::stage {
namespace {

using contract::Refused;
using contract::refused;

class StageRefusalsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (refused({SYS_getppid, EPERM}, [] { return ::getppid() == -1; }) != Refused::True)
      GTEST_SKIP() << "this host has no filters for system calls";
  }
  [[nodiscard]] BackgroundProgram idle() const {
    return {.program = "/bin/true", .environment = {}, .log = root.control("log")};
  }

  contract::TemporaryStage stage;
  const StageRoot& root = stage.root();
};

TEST_F(StageRefusalsTest, AKernelThatCannotKeepPathsOnTheStageIsFatal) {
  const auto exists = [this] { return root.existing("/bin").has_value(); };
  EXPECT_EQ(refused({SYS_openat2, ENOSYS}, exists), Refused::Died);
  EXPECT_EQ(refused({SYS_openat2, EACCES}, exists), Refused::False);
  EXPECT_EQ(refused({contract::readingLinks, EACCES}, exists), Refused::False);
}

TEST_F(StageRefusalsTest, AProcessThatCannotBeLookedAtIsAbsent) {
  const StageKernelProcesses processes;
  const auto seen = [&processes] { return processes.info(::getpid()).has_value(); };
  EXPECT_EQ(refused({SYS_pidfd_open, EMFILE}, seen), Refused::False);
  EXPECT_EQ(refused({SYS_openat, EACCES}, seen), Refused::False);
  EXPECT_EQ(refused({SYS_read, EIO}, seen), Refused::False);
}

TEST_F(StageRefusalsTest, AKernelWithoutProcessDescriptorsIsFatal) {
  const auto seen = [] { return StageKernelProcesses().info(::getpid()).has_value(); };
  EXPECT_EQ(refused({SYS_pidfd_open, ENOSYS}, seen), Refused::Died);
}

TEST_F(StageRefusalsTest, AKernelThatDoesNotNumberProcessesTellsTheTickOfTheirStart) {
  const auto microsecondsPerTick = 1'000'000 / static_cast<std::uint64_t>(::sysconf(_SC_CLK_TCK));
  const auto wholeTick = [microsecondsPerTick] {
    const auto info = StageKernelProcesses().info(::getpid());
    return info && info->startMicroseconds % microsecondsPerTick == 0;
  };
  EXPECT_EQ(refused({SYS_fstatfs, ENOSYS}, wholeTick), Refused::True);
}

TEST_F(StageRefusalsTest, WithoutASocketNothingIsConnectedAndNothingListens) {
  const auto path = root.control("a.sock");
  const auto connects = [&path] { return static_cast<bool>(connectedTo(path)); };
  const auto listens = [&path] { return static_cast<bool>(listeningAt(path)); };
  const auto listener = listeningAt(path);
  ASSERT_TRUE(connects());
  for (const auto call : {SYS_socket, SYS_connect})
    EXPECT_EQ(refused({static_cast<int>(call), EMFILE}, connects), Refused::False) << call;
  for (const auto call : {SYS_socket, SYS_bind, SYS_listen})
    EXPECT_EQ(refused({static_cast<int>(call), EMFILE}, listens), Refused::False) << call;
}

TEST_F(StageRefusalsTest, APathThatNoSocketCanHaveIsConnectedToNothing) {
  for (const auto& path : {root.host("/missing/a.sock"), root.host("/" + std::string(200, 's'))}) {
    EXPECT_FALSE(connectedTo(path)) << path;
    EXPECT_FALSE(listeningAt(path)) << path;
  }
}

TEST_F(StageRefusalsTest, AQuestionToLaunchdThatIsCutOffHasNoAnswer) {
  // It listens and never answers.
  const auto launchd = listeningAt(root.control("launchd.sock"));
  ASSERT_TRUE(launchd);
  const auto asked = [this] { return askLaunchd(root, {"list"}).has_value(); };
  EXPECT_EQ(refused({SYS_sendto, EPIPE}, asked), Refused::False);
  EXPECT_EQ(refused({SYS_read, ECONNRESET}, asked), Refused::False);
}

TEST_F(StageRefusalsTest, ASenderWhoseConnectionBreaksDeliversWhatCame) {
  UrlInbox inbox(root);
  const auto sender = connectedTo(inbox.path());
  ASSERT_TRUE(platform::writeAll(sender.get(), "first\n"));
  const auto delivers = [&inbox] { return !inbox.receive().empty(); };
  EXPECT_EQ(refused({SYS_read, ECONNRESET}, delivers), Refused::False);
  EXPECT_TRUE(inbox.receive().empty());
}

TEST_F(StageRefusalsTest, AMainLoopThatCannotBeWokenIsFatal) {
  const auto made = [this] { return RunLoop(root).turns() == 0; };
  EXPECT_EQ(refused({SYS_eventfd2, EMFILE}, made), Refused::Died);
}

TEST_F(StageRefusalsTest, ABackgroundProgramThatGetsNoProcessIsNotStarted) {
  const auto starts = [this] { return startInBackground(idle()); };
  ASSERT_TRUE(starts());
  EXPECT_EQ(refused({SYS_clone, EAGAIN}, starts), Refused::False);
  EXPECT_EQ(refused({SYS_wait4, ECHILD}, starts), Refused::False);
  EXPECT_EQ(refused({SYS_execve, EACCES}, starts), Refused::False);
  EXPECT_EQ(refused({SYS_chdir, EACCES}, starts), Refused::False);
}

TEST_F(StageRefusalsTest, ABackgroundProgramNeedsEnoughDescriptors) {
  // Neither is left to the child: a sanitizer's checks take descriptors, and its own exit status is 1.
  const auto program = idle();
  constexpr int startedStatus = 42;
  bool started = false;
  for (rlim_t descriptors = 0; descriptors < 64; ++descriptors) {
    contract::Child child([&program, descriptors] {
      const rlimit limit{.rlim_cur = descriptors, .rlim_max = descriptors};
      ::setrlimit(RLIMIT_NOFILE, &limit);
      ::_exit(startInBackground(program) ? startedStatus : 0);
    });
    const bool starts = contract::exitStatus(child.reap()) == startedStatus;
    EXPECT_TRUE(starts || !started) << "no longer with " << descriptors;
    EXPECT_FALSE(starts && descriptors < 3) << "with " << descriptors;
    started = starts;
  }
  EXPECT_TRUE(started);
}

TEST_F(StageRefusalsTest, PrivilegesThatCannotBeGivenUpAreFatal) {
  const auto renounces = [] {
    renouncePrivileges();
    return true;
  };
  EXPECT_EQ(refused({SYS_capset, EPERM}, renounces), Refused::Died);
  EXPECT_EQ(refused({SYS_prctl, EPERM}, renounces), Refused::Died);
}

/// A user like any other. One that was root before has to say that its own entries in /proc are its own.
void becomeNobody() {
  constexpr uid_t nobody = 65534;
  if (::getuid() != 0) return;
  const bool changed = ::setresgid(nobody, nobody, nobody) == 0 && ::setresuid(nobody, nobody, nobody) == 0 &&
                       ::prctl(PR_SET_DUMPABLE, 1) == 0;
  if (!changed) ::_exit(static_cast<int>(Refused::NotPossibleHere));
}

/// Whether a user becomes an administrator when the kernel refuses the call.
Refused administrator(int call) {
  return refused({call, EPERM}, [] {
    becomeNobody();
    return takeAdministratorPrivileges();
  });
}

/// The kernel gives no user namespace to a process of several threads, and the thread sanitizer adds one to each.
bool isOfOneThread() {
  const std::filesystem::directory_iterator threads("/proc/self/task");
  return std::distance(begin(threads), end(threads)) == 1;
}

TEST_F(StageRefusalsTest, AUserBecomesAnAdministratorInANamespaceOrNotAtAll) {
  // What another program makes of the same wish on this host.
  const auto namespaces = refused({SYS_getppid, EPERM}, [] {
    becomeNobody();
    return isOfOneThread() && std::system("unshare --user --map-root-user true 2>/dev/null") == 0;
  });
  EXPECT_EQ(administrator(SYS_getppid), namespaces);
  // A namespace does as well when the privileges that are there cannot be asked for.
  EXPECT_EQ(administrator(SYS_capget), namespaces);
  for (const auto call : {SYS_unshare, SYS_openat, SYS_write})
    EXPECT_EQ(administrator(static_cast<int>(call)), Refused::False) << call;
}

}  // namespace
}  // namespace tamo::stage

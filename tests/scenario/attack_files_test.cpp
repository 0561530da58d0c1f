#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>

#include "app/receipt.hpp"
#include "launch/job_lock.hpp"
#include "launch/launchctl.hpp"
#include "platform/stage/stage_clock.hpp"
#include "platform/stage/stage_kernel_processes.hpp"
#include "platform/stage/stage_lock_files.hpp"
#include "platform/stage/stage_log.hpp"
#include "platform/stage/stage_processes.hpp"
#include "platform/stage/stage_user.hpp"
#include "scenario/attack.hpp"
#include "scenario/stage.hpp"

/// Real files, and somebody who exchanges them between two calls, at each call that there is.
namespace tamo::scenario {
namespace {

namespace fs = std::filesystem;
using std::chrono::seconds;
using std::chrono::steady_clock;
using Texts = std::vector<std::string>;

const std::string temporary = "/private/var/folders/st/tamo/T/";

Texts namesIn(const std::string& folder) {
  Texts names;
  for (const auto& item : fs::directory_iterator(folder))
    names.push_back(item.path().filename());
  std::ranges::sort(names);
  return names;
}

class AttackOnFiles : public ::testing::Test {
 protected:
  AttackOnFiles() {
    // The stage's launchctl finds its stage by this, as it does when a companion starts it.
    ::setenv("TAMO_STAGE", stage.root().directory().c_str(), 1);
  }
  [[nodiscard]] std::string printPath() const {
    return temporary + "tamo-core-print-" + std::to_string(::getpid()) + ".txt";
  }
  /// Prints the job while somebody has a turn at each call.
  std::optional<PrintResult> printWith(const AttackedFiles::Turn& turn) {
    AttackedFiles files(stage.root(), turn);
    return Launchctl({.processes = processes,
                      .files = files,
                      .clock = clock,
                      .kernelProcesses = kernelProcesses,
                      .user = user,
                      .label = Stage::label})
        .printJob();
  }
  [[nodiscard]] std::string host(const std::string& path) const { return stage.root().host(path); }

  const Stage stage;
  Victim victim{stage.root()};
  stage::StageProcesses processes{stage.root()};
  stage::StageClock clock{stage.root()};
  stage::StageKernelProcesses kernelProcesses;
  stage::StageUser user{stage.root()};
};

/// Every trap at every moment of a print. What the print says is another matter: whoever may lay a trap there may as well
/// write into the file.
TEST_F(AttackOnFiles, APrintWritesIntoNobodysFileWhateverIsLaidInItsPlace) {
  const Texts moments{"before writeAtomically", "after writeAtomically", "before openForWriting",
                      "after openForWriting",   "before readWhole",      "after readWhole",
                      "before remove"};
  for (const auto& moment : moments) {
    for (const auto trap : everyTrap) {
      SCOPED_TRACE(nameOf(trap) + " " + moment);
      int turns = 0;
      const auto began = steady_clock::now();
      static_cast<void>(printWith([&](std::string_view now, const std::string& path) {
        if (now != moment || turns++ != 0) return;
        EXPECT_EQ(path, printPath());
        victim.lay(trap, path);
      }));
      EXPECT_EQ(turns, 1);
      EXPECT_LT(steady_clock::now() - began, seconds(4)) << "it waited for what was laid";
      EXPECT_TRUE(victim.isUnharmed());
      EXPECT_EQ(namesIn(host(temporary)), Texts{"studio.pell.tamo.core.job.lock"});
    }
  }
}

/// What was begun in one folder is not gone on with in another, and nothing that lies there is changed.
TEST_F(AttackOnFiles, ATemporaryDirectoryThatIsExchangedForALinkHarmsNothingWhereItLeads) {
  const fs::path real = host("/private/var/folders/st/tamo/T");
  for (const std::string moment : {"before writeAtomically", "before openForWriting", "after openForWriting",
                                   "before readWhole", "before remove"}) {
    SCOPED_TRACE(moment);
    static_cast<void>(printWith([&](std::string_view now, const std::string&) {
      if (now != moment) return;
      fs::rename(real, real.string() + ".kept");
      fs::create_directory_symlink(fs::path(host(Victim::folder)).lexically_relative(real.parent_path()),
                                   real);
    }));
    EXPECT_TRUE(victim.isUnharmed());
    fs::remove(real);
    fs::rename(real.string() + ".kept", real);
  }
}

/// It is made anew under its name, so what somebody has open is another file.
TEST_F(AttackOnFiles, APrintFileThatSomebodyMadeAndOpenedFirstIsNotTheOneThatIsRead) {
  const platform::Descriptor theirs(
      ::open(host(printPath()).c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
  const std::string forged = "gui/501/" + Stage::label + " = {\n\tpid = 4242\n}\n";
  const auto printed = printWith([&](std::string_view, const std::string&) {
    EXPECT_EQ(::pwrite(theirs.get(), forged.data(), forged.size(), 0), static_cast<ssize_t>(forged.size()));
  });
  ASSERT_TRUE(printed && printed->text);
  EXPECT_EQ(printed->code, 0);
  EXPECT_FALSE(printed->text->contains("pid = 4242"));
  EXPECT_TRUE(printed->text->contains("pid = " + std::to_string(stage.corePid())));
}

/// What does not hold: a program of the same user may write into the new file as the companion may, and is believed.
TEST_F(AttackOnFiles, APrintFileThatTheSameUserWritesIntoAfterItWasMadeIsBelieved) {
  const auto printed = printWith([&](std::string_view now, const std::string& path) {
    if (now == "before readWhole") std::ofstream(host(path)) << "forged";
  });
  ASSERT_TRUE(printed);
  EXPECT_EQ(printed->text, "forged");
}

class AttackOnTheLock : public AttackOnFiles {
 protected:
  [[nodiscard]] JobLock lock() {
    return JobLock({.lockFiles = lockFiles, .files = files, .clock = clock, .label = Stage::label});
  }
  const std::string path = temporary + Stage::label + ".job.lock";
  stage::StageLockFiles lockFiles{stage.root()};
  stage::StageFiles files{stage.root()};
};

/// A link, a folder or a socket gives no lock, at once, and the action goes on without one; nothing else is locked in
/// its place, made or changed.
TEST_F(AttackOnTheLock, NoTrapInItsPlaceIsFollowedOrWaitedFor) {
  for (const auto trap : everyTrap) {
    SCOPED_TRACE(nameOf(trap));
    victim.lay(trap, path);
    const auto began = steady_clock::now();
    const auto held = lock().lockJob();
    EXPECT_LT(steady_clock::now() - began, seconds(4));
    const bool follows = trap == Trap::Link || trap == Trap::DanglingLink;
    const bool folder = trap == Trap::Folder || trap == Trap::FolderWithLink;
    EXPECT_EQ(held >= 0, !follows && !folder);
    lock().unlockJob(held);
    EXPECT_TRUE(victim.isUnharmed());
  }
}

/// What does not hold: the lock belongs to the file that was opened.
TEST_F(AttackOnTheLock, AFileThatIsReplacedWhileTheLockIsHeldLetsASecondOneIn) {
  const auto first = lock().lockJob();
  ASSERT_GE(first, 0);
  victim.lay(Trap::OtherFile, path);
  const auto second = lock().lockJob();
  EXPECT_GE(second, 0);
  lock().unlockJob(second);
  lock().unlockJob(first);
}

/// Who waits, waits for the file that he opened, is not lost when that has no name any more, and has it in the end.
TEST_F(AttackOnTheLock, AFileThatIsReplacedWhileItIsWaitedForLosesNobody) {
  const auto first = lock().lockJob();
  ASSERT_GE(first, 0);
  const auto waiting = stage.start({"--core-action", "sync"});
  // The companion opens the lock's file 0.4 seconds after it was launched.
  const auto opened = [&] {
    const auto folder = "/proc/" + std::to_string(waiting.pid) + "/fd";
    std::error_code gone;
    for (const auto& one : fs::directory_iterator(folder, gone))
      if (fs::read_symlink(one.path(), gone).string().ends_with(".job.lock")) return true;
    return false;
  };
  ASSERT_TRUE(eventually(opened));
  victim.lay(Trap::OtherFile, path);
  EXPECT_EQ(stage.act("sync").status, 0) << "another one, by the new file";
  EXPECT_TRUE(runs(waiting.pid)) << "by the old file, which is held";
  lock().unlockJob(first);
  EXPECT_EQ(Stage::finish(waiting).status, 0);
  EXPECT_EQ(stage.lines().size(), 4U);
}

class AttackOnAReceipt : public AttackOnFiles {
 protected:
  const std::string folder = "/Users/tamo/Library/Application Support/TamoPKG1/M2";
};

/// The companion is given its pid when it is started, half a second before it writes.
TEST_F(AttackOnAReceipt, NoTrapInItsPlaceIsWrittenThrough) {
  stage::placeCopy(stage.root(), TAMO_BINARY_DIR "/bin", {.companion = stage::Companion::Receipts});
  fs::create_directories(host(folder));
  for (const auto trap : everyTrap) {
    SCOPED_TRACE(nameOf(trap));
    const auto companion = stage.start({"--core-action", "status"});
    const auto name = std::to_string(companion.pid) + "-core.json";
    victim.lay(trap, folder + "/" + name);
    EXPECT_EQ(Stage::finish(companion).status, 0);
    EXPECT_TRUE(victim.isUnharmed());
    const bool inTheWay = trap == Trap::Folder || trap == Trap::FolderWithLink;
    EXPECT_EQ(stage.lines().back() == "error receipt failed", inTheWay);
    if (!inTheWay)
      EXPECT_TRUE(fs::symlink_status(host(folder + "/" + name)).type() == fs::file_type::regular);
    fs::remove_all(host(folder + "/" + name));
    EXPECT_EQ(namesIn(host(folder)), Texts{});
  }
}

/// The names under which the receipt is written beside its place are made of the pid and a number from 0 on.
TEST_F(AttackOnAReceipt, NamesBesideItThatAreTakenArePassedOver) {
  stage::placeCopy(stage.root(), TAMO_BINARY_DIR "/bin", {.companion = stage::Companion::Receipts});
  fs::create_directories(host(folder));
  const auto companion = stage.start({"--core-action", "status"});
  const auto begin = ".tamo-write." + std::to_string(companion.pid) + ".";
  for (int number = 0; number < 20; ++number)
    victim.lay(Trap::Link, folder + "/" + begin + std::to_string(number));
  EXPECT_EQ(Stage::finish(companion).status, 0);
  EXPECT_TRUE(stage.file(folder + "/" + std::to_string(companion.pid) + "-core.json"));
  EXPECT_EQ(namesIn(host(folder)).size(), 21U);
  EXPECT_TRUE(victim.isUnharmed());
}

/// What does not hold: a link in the place of the folder is a folder. The receipt lies where it leads, under its own
/// name, and nothing that was there is touched.
TEST_F(AttackOnAReceipt, AFolderThatIsALinkGetsTheReceiptAndKeepsItsFiles) {
  stage::placeCopy(stage.root(), TAMO_BINARY_DIR "/bin", {.companion = stage::Companion::Receipts});
  fs::create_directories(host("/Users/tamo/Library/Application Support/TamoPKG1"));
  fs::create_directory_symlink("../../../Documents", host(folder));
  const auto ended = stage.act("status");
  const auto receipt = std::to_string(ended.pid) + "-core.json";
  EXPECT_EQ(namesIn(host(Victim::folder)), (Texts{receipt, "below", "letter"}));
  fs::remove(host(Victim::folder + "/" + receipt));
  EXPECT_TRUE(victim.isUnharmed());
}

}  // namespace
}  // namespace tamo::scenario

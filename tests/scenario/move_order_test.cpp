#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <thread>
#include <unistd.h>

#include "platform/posix/descriptor.hpp"
#include "scenario/move_stage.hpp"

/// What comes after what, and how long the move waits for the copy that it came from.
namespace tamo::scenario {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
using Texts = std::vector<std::string>;

/// The changes in several folders, in the order in which the kernel saw them.
class Changes {
 public:
  /// Notes `name` for every item that appears in the folder, or is moved to it.
  void watch(const std::string& folder, const std::string& name) {
    const int watch = ::inotify_add_watch(queue_.get(), folder.c_str(), IN_CREATE | IN_MOVED_TO);
    EXPECT_GE(watch, 0) << folder;
    names_[watch] = name;
  }
  /// The same for a file that is written to.
  void watchFile(const std::string& file, const std::string& name) {
    {
      const platform::Descriptor made(::open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
    }
    const int watch = ::inotify_add_watch(queue_.get(), file.c_str(), IN_MODIFY);
    EXPECT_GE(watch, 0) << file;
    names_[watch] = name;
  }
  /// "FOLDER: ITEM" for each so far, hidden items left out.
  [[nodiscard]] Texts seen() const {
    Texts found;
    alignas(inotify_event) std::array<char, 65536> bytes{};
    for (;;) {
      const auto size = ::read(queue_.get(), bytes.data(), bytes.size());
      if (size <= 0) return found;
      for (auto at = bytes.data(); at < bytes.data() + size;) {
        const auto* event = reinterpret_cast<const inotify_event*>(at);
        const std::string item = event->len > 0 ? event->name : "";
        if (!item.starts_with(".")) found.push_back(names_.at(event->wd) + (item.empty() ? "" : ": " + item));
        at += sizeof(inotify_event) + event->len;
      }
    }
  }

 private:
  platform::Descriptor queue_{::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)};
  std::map<int, std::string> names_;
};

class MoveOrderScenario : public ::testing::Test {
 protected:
  void watchEverything() {
    for (const auto& folder : {trashPath, resultFolder})
      fs::create_directories(stage.root().host(folder));
    changes.watch(stage.root().host("/Applications"), "installed");
    changes.watch(stage.root().host(trashPath), "trashed");
    changes.watch(stage.root().host(resultFolder), "recorded");
    changes.watchFile(stage.root().control("log"), "logged");
    changes.watchFile(stage.root().control("app.log"), "started or ended");
    changes.watch(stage.root().control("."), "control room");
  }

  const MoveStage stage;
  Changes changes;
};

TEST_F(MoveOrderScenario, CopyTrashLogResultQuitOpen) {
  stage.install("4999");
  const auto tamo = stage.openTamo("downloaded");
  watchEverything();
  const auto companion = stage.startMove();
  EXPECT_TRUE(eventually([this] { return stage.result() != "none"; }));
  std::this_thread::sleep_for(milliseconds(300));
  EXPECT_EQ(stage.front(), downloadedPath) << "opened before the old copy has quit";
  MoveStage::quit(tamo);
  Stage::finish(companion);
  EXPECT_TRUE(eventually([this] { return !stage.tamosFrom(installedPath).empty(); }));
  const auto seen = changes.seen();
  ASSERT_GE(seen.size(), 7U) << ::testing::PrintToString(seen);
  EXPECT_EQ(seen[0], "trashed: Tamo.app");
  EXPECT_EQ(seen[1], "installed: Tamo.app");
  EXPECT_THAT(seen[2], ::testing::MatchesRegex("trashed: Tamo [0-9.]+.app"));
  EXPECT_EQ(seen[3], "logged");
  EXPECT_EQ(seen[4], "recorded: move-to-applications.json");
  EXPECT_EQ(seen[5], "started or ended") << "the end of the old copy";
  // The installed copy notes its start by itself, before or after it is said to be in front.
  EXPECT_THAT(Texts(seen.begin() + 6, seen.end()), ::testing::Contains("control room: front"));
}

TEST_F(MoveOrderScenario, AFailureIsLoggedAndRecordedAndNothingElse) {
  stage.root().set("tool-ditto", "* fail 1");
  watchEverything();
  stage.move();
  EXPECT_EQ(changes.seen(), (Texts{"logged", "recorded: move-to-applications.json"}));
}

TEST_F(MoveOrderScenario, TheOldCopyIsTrashedOnlyWhenTheNewOneIsComplete) {
  stage.root().set("tool-xattr", "* pause");
  const auto original = stage.tree(downloadedPath);
  const auto companion = stage.startMove();
  EXPECT_TRUE(eventually([&] { return stage.tree(installedPath) == original; }));
  std::this_thread::sleep_for(milliseconds(100));
  EXPECT_EQ(stage.tree(downloadedPath), original);
  EXPECT_EQ(stage.result(), "none");
  EXPECT_EQ(stage.stage().lines(), Texts{});
  stage.root().set("tool-xattr", std::nullopt);
  Stage::finish(companion);
  EXPECT_FALSE(stage.exists(downloadedPath));
}

/// Within one look, which tests on virtual time demand; here the machine may be busy.
TEST_F(MoveOrderScenario, TheWaitEndsSoonAfterTheOldCopysEnd) {
  const auto tamo = stage.openTamo("downloaded");
  const auto companion = stage.startMove();
  EXPECT_TRUE(eventually([this] { return stage.result() != "none"; }));
  std::this_thread::sleep_for(milliseconds(700));
  EXPECT_TRUE(runs(companion.pid));
  EXPECT_EQ(stage.front(), downloadedPath);
  MoveStage::quit(tamo);
  const auto quitAt = steady_clock::now();
  Stage::finish(companion);
  EXPECT_LT(steady_clock::now() - quitAt, milliseconds(3000));
  EXPECT_EQ(stage.front(), installedPath);
}

TEST_F(MoveOrderScenario, AnInstalledCopyThatRunsIsNotWaitedForAndComesToTheFront) {
  stage.install("6000");
  const auto installed = stage.openTamo("installed");
  const auto companion = stage.startMove();
  EXPECT_LT(Stage::finish(companion).after, milliseconds(5000));
  EXPECT_EQ(stage.result(), resultOf("opened"));
  EXPECT_EQ(stage.front(), installedPath);
  EXPECT_EQ(stage.tamosFrom(installedPath), std::vector<pid_t>{installed}) << "not started twice";
}

TEST_F(MoveOrderScenario, AnotherCopyThatRunsIsNotWaitedFor) {
  stage.place({.where = "/Users/tamo/Other/Tamo.app"});
  static_cast<void>(stage.openTamo("/Users/tamo/Other/Tamo.app"));
  EXPECT_LT(stage.move().after, milliseconds(5000));
  EXPECT_EQ(stage.front(), installedPath);
}

/// The stage's clock is set 28 seconds ahead, and the wait goes on for the two that are left.
TEST_F(MoveOrderScenario, ACopyThatNeverQuitsIsWaitedForForThirtySecondsOfTheWallClock) {
  const auto tamo = stage.openTamo("downloaded");
  const auto companion = stage.startMove();
  EXPECT_TRUE(eventually([this] { return stage.result() != "none"; }));
  const auto recordedAt = steady_clock::now();
  stage.root().set("clock-ahead", "28");
  std::this_thread::sleep_until(recordedAt + milliseconds(1500));
  EXPECT_EQ(stage.front(), downloadedPath);
  Stage::finish(companion);
  const auto waited = steady_clock::now() - recordedAt;
  EXPECT_GE(waited, milliseconds(1900));
  EXPECT_LT(waited, milliseconds(6000));
  EXPECT_TRUE(runs(tamo)) << "nobody ends it";
  EXPECT_EQ(stage.front(), installedPath);
  EXPECT_EQ(stage.result(), resultOf("moved"));
}

}  // namespace
}  // namespace tamo::scenario

#include "guard/live_data.hpp"

#include <barrier>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

#include "fakes/fake_files.hpp"
#include "fakes/fake_surroundings.hpp"

namespace tamo {
namespace {

const std::string installedInfo = "/Applications/Tamo.app/Contents/Info.plist";
const std::string liveFile = "/Users/u/Library/Application Support/Tamo/db.sqlite";
const std::string isolatedFile = std::string(LiveDataGuard::isolatedData) + "/db.sqlite";

class LiveDataTest : public ::testing::Test {
 protected:
  void install() {
    files.contents[installedInfo] =
        "<plist><dict><key>CFBundleIdentifier</key><string>studio.pell.Tamo</string></dict></plist>";
  }

  fakes::Ledger ledger;
  fakes::FakeClock clock{ledger};
  fakes::FakeFiles files{ledger, clock};
  fakes::FakeBundles bundles{ledger, clock};
  fakes::FakeUser user;
  LiveData liveData{files, bundles, user};
};

TEST_F(LiveDataTest, TheInstalledCompanionOpensLiveData) {
  install();
  EXPECT_TRUE(liveData.current());
  EXPECT_EQ(liveData.dataHome(), "/Users/u");
  EXPECT_EQ(liveData.clamp(liveFile), liveFile);
}

TEST_F(LiveDataTest, ACompanionElsewhereIsIsolated) {
  install();
  bundles.mainBundle = "/Users/u/Downloads/Tamo.app/Contents/Library/LoginItems/Tamo Core.app";
  EXPECT_FALSE(liveData.current());
  EXPECT_EQ(liveData.dataHome(), "/private/tmp/studio.pell.Tamo-isolated");
  EXPECT_EQ(liveData.clamp(liveFile), isolatedFile);
}

TEST_F(LiveDataTest, TheStagedCopyIsTheOneInTheHomeOfTheUser) {
  const std::string staged = "/Users/v/Library/Application Support/Tamo/staged/Tamo.app";
  install();
  files.contents[staged + "/Contents/Info.plist"] = files.contents[installedInfo];
  bundles.mainBundle = staged;
  user.entry->home = "/Users/v";
  EXPECT_TRUE(liveData.current());
  EXPECT_EQ(liveData.dataHome(), "/Users/v");
}

TEST_F(LiveDataTest, AnUnknownUsersHomeIsTheEmptyOne) {
  install();
  user.entry = std::nullopt;
  EXPECT_TRUE(liveData.current());
  EXPECT_EQ(liveData.dataHome(), "/var/empty");
}

TEST_F(LiveDataTest, LiveAccessLeavesAPathAsItIsWritten) {
  install();
  EXPECT_EQ(liveData.clamp("/a/../b/"), "/a/../b/");
}

TEST_F(LiveDataTest, AnIsolatedCompanionKeepsPathsOutsideTheLiveDataOfThisUser) {
  const std::string otherFile = "/Users/v/Library/Application Support/Tamo/db.sqlite";
  EXPECT_EQ(liveData.clamp(otherFile), otherFile);
  user.entry->home = "/Users/v";
  EXPECT_EQ(liveData.clamp(otherFile), isolatedFile);
  EXPECT_EQ(liveData.clamp(liveFile), liveFile);
}

TEST_F(LiveDataTest, TheCopyIsLookedAtOnce) {
  EXPECT_FALSE(liveData.current());
  static_cast<void>(liveData.dataHome());
  static_cast<void>(liveData.clamp(liveFile));
  EXPECT_FALSE(liveData.current());
  EXPECT_EQ(ledger.count("files: read " + installedInfo), 1U);
}

TEST_F(LiveDataTest, NothingIsLookedAtBeforeTheFirstQuestion) {
  EXPECT_TRUE(ledger.entries().empty());
  install();
  EXPECT_TRUE(liveData.current());
}

TEST_F(LiveDataTest, AYesStandsEvenWhenTheCopyIsGone) {
  install();
  ASSERT_TRUE(liveData.current());
  files.contents.clear();
  bundles.mainBundle = "/Users/u/Downloads/Tamo.app";
  EXPECT_TRUE(liveData.current());
  EXPECT_EQ(liveData.clamp(liveFile), liveFile);
}

TEST_F(LiveDataTest, ANoStandsEvenWhenTheCopyIsInstalledMeanwhile) {
  ASSERT_FALSE(liveData.current());
  install();
  EXPECT_FALSE(liveData.current());
  EXPECT_EQ(liveData.clamp(liveFile), isolatedFile);
}

TEST_F(LiveDataTest, ConcurrentFirstReadersSeeOneAnswer) {
  install();
  constexpr std::size_t readers = 8;
  std::barrier together(readers);
  std::vector<char> answers(readers, 0);
  std::vector<std::thread> threads;
  for (auto& answer : answers) {
    threads.emplace_back([this, &together, &answer] {
      together.arrive_and_wait();
      answer = liveData.current() ? 1 : 0;
    });
  }
  for (auto& thread : threads)
    thread.join();

  EXPECT_EQ(answers, std::vector<char>(readers, 1));
  EXPECT_EQ(ledger.count("files: read " + installedInfo), 1U);
}

}  // namespace
}  // namespace tamo

#include "platform/stage/run_loop.hpp"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

#include "contract/noting_delegate.hpp"
#include "contract/temporary_stage.hpp"
#include "platform/posix/byte_stream.hpp"
#include "platform/stage/stream_sockets.hpp"

namespace tamo::stage {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

class RunLoopTest : public ::testing::Test {
 protected:
  RunLoopTest() {
    stage.root().set("terminate", "returns");
    loop.setDelegate(delegate);
    ::unsetenv("TAMO_STAGE_OPEN");
  }
  [[nodiscard]] std::size_t inboxes() const {
    const fs::directory_iterator folder(stage.root().control("companions"));
    return static_cast<std::size_t>(std::distance(begin(folder), end(folder)));
  }

  contract::TemporaryStage stage;
  contract::NotingDelegate delegate;
  RunLoop loop{stage.root()};
};

TEST_F(RunLoopTest, TheURLsOfTheStartComeBeforeTheLaunch) {
  ::setenv("TAMO_STAGE_OPEN", "tamo-core://sync\n\ntamo-core://status\n", 1);
  delegate.atLaunch = [this] { loop.terminate(); };
  loop.run();
  EXPECT_EQ(delegate.notes, (Texts{"open tamo-core://sync tamo-core://status", "launched"}));
  EXPECT_EQ(std::getenv("TAMO_STAGE_OPEN"), nullptr);
}

TEST_F(RunLoopTest, NoURLsOfTheStartAreNoDelivery) {
  ::setenv("TAMO_STAGE_OPEN", "\n", 1);
  delegate.atURLs = [] { FAIL() << "delivered"; };
  delegate.atLaunch = [this] { loop.terminate(); };
  loop.run();
  EXPECT_EQ(delegate.notes, Texts{"launched"});
}

TEST_F(RunLoopTest, ATerminateThatReturnsDropsWhatIsQueued) {
  delegate.atLaunch = [this] {
    loop.post([this] {
      loop.terminate();
      delegate.notes.emplace_back("after the request");
    });
    loop.post([this] { delegate.notes.emplace_back("queued"); });
  };
  loop.run();
  EXPECT_EQ(delegate.notes, (Texts{"launched", "after the request"}));
}

TEST_F(RunLoopTest, ATerminateWhileURLsAreOpenedPreventsTheLaunch) {
  ::setenv("TAMO_STAGE_OPEN", "tamo-core://sync", 1);
  delegate.atURLs = [this] { loop.terminate(); };
  loop.run();
  EXPECT_EQ(delegate.notes, Texts{"open tamo-core://sync"});
}

TEST_F(RunLoopTest, NoWorkRunsAfterATerminateForURLs) {
  delegate.atURLs = [this] { loop.terminate(); };
  delegate.atLaunch = [this] {
    const auto inbox = stage.root().control("companions/" + std::to_string(::getpid()) + ".sock");
    EXPECT_TRUE(platform::writeAll(connectedTo(inbox).get(), "tamo-core://sync"));
    loop.post([this] { delegate.notes.emplace_back("work"); });
  };
  loop.run();
  EXPECT_EQ(delegate.notes, (Texts{"launched", "open tamo-core://sync"}));
}

TEST_F(RunLoopTest, ATerminateEndsTheProcessUnlessToldOtherwise) {
  stage.root().set("terminate", std::nullopt);
  delegate.atLaunch = [this] {
    loop.terminate();
    std::exit(7);
  };
  EXPECT_EXIT(loop.run(), ::testing::ExitedWithCode(0), "");
  EXPECT_EQ(inboxes(), 0U);
}

TEST_F(RunLoopTest, TheInboxIsThereWhileTheLoopRuns) {
  std::size_t atLaunch = 0;
  delegate.atLaunch = [&] {
    atLaunch = inboxes();
    loop.terminate();
  };
  loop.run();
  EXPECT_EQ(atLaunch, 1U);
  EXPECT_EQ(inboxes(), 0U);
}

TEST_F(RunLoopTest, WhatNoApplicationCanDoIsFatal) {
  EXPECT_DEATH(loop.terminate(), "fatal: there is no application to terminate");
  RunLoop orphan(stage.root());
  EXPECT_DEATH(orphan.run(), "fatal: an application without a delegate was run");
}

TEST_F(RunLoopTest, TheLoopBelongsToItsMainThread) {
  EXPECT_DEATH(std::thread([this] { loop.run(); }).join(), "fatal: the main loop entered off the main");
  EXPECT_DEATH(std::thread([this] { loop.postAfter(std::chrono::seconds(0), [] {}); }).join(),
               "fatal: delayed work entered off the main");
  EXPECT_DEATH(std::thread([this] { loop.terminate(); }).join(), "fatal: the terminate request entered off");
}

}  // namespace
}  // namespace tamo::stage

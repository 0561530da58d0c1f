#include <sys/socket.h>
#include <thread>

#include "contract/backend.hpp"
#include "contract/noting_delegate.hpp"

namespace tamo::contract {
namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

class MainLoopContract : public Contract {
 protected:
  MainLoopContract() {
    backend->outliveTerminate();
    application.becomeAccessory();
    application.setDelegate(delegate);
  }
  [[nodiscard]] std::function<void()> noting(const std::string& note) {
    return [this, note] { delegate.notes.push_back(note); };
  }
  [[nodiscard]] std::function<void()> ending() {
    return [this] { application.terminate(); };
  }

  platform::Application& application = platform.application;
  platform::MainQueue& queue = platform.mainQueue;
  NotingDelegate delegate;
};

TEST_P(MainLoopContract, LaunchingFinishesBeforeAnyWork) {
  queue.post(noting("work"));
  queue.post(ending());
  application.run();
  EXPECT_EQ(delegate.notes, (Texts{"launched", "work"}));
}

TEST_P(MainLoopContract, WorkRunsInOrderAndNeverInsideThePost) {
  delegate.atLaunch = [this] {
    queue.post([this] {
      queue.post(noting("third"));
      queue.post(ending());
      delegate.notes.emplace_back("first");
    });
    queue.post(noting("second"));
    delegate.notes.emplace_back("posted");
  };
  application.run();
  EXPECT_EQ(delegate.notes, (Texts{"launched", "posted", "first", "second", "third"}));
}

TEST_P(MainLoopContract, DelayedWorkRunsInTheOrderOfItsDueTimes) {
  delegate.atLaunch = [this] {
    queue.postAfter(30ms, ending());
    queue.postAfter(20ms, noting("late"));
    queue.postAfter(10ms, noting("early"));
    queue.postAfter(10ms, noting("early too"));
    queue.post(noting("at once"));
  };
  application.run();
  EXPECT_EQ(delegate.notes, (Texts{"launched", "at once", "early", "early too", "late"}));
}

TEST_P(MainLoopContract, DelayedWorkIsNeverEarly) {
  auto start = platform.clock.monotonicNow();
  delegate.atLaunch = [&] {
    start = platform.clock.monotonicNow();
    queue.postAfter(30ms, ending());
  };
  application.run();
  EXPECT_GE(platform.clock.monotonicNow() - start, 30ms);
}

TEST_P(MainLoopContract, NoDelayIsStillALaterTurn) {
  delegate.atLaunch = [this] {
    queue.postAfter(0ns, noting("work"));
    queue.postAfter(0ns, ending());
    delegate.notes.emplace_back("posted");
  };
  application.run();
  EXPECT_EQ(delegate.notes, (Texts{"launched", "posted", "work"}));
}

TEST_P(MainLoopContract, AnyThreadMayPostAndTheMainThreadRuns) {
  std::thread other;
  bool otherIsMain = true;
  bool workIsOnMain = false;
  delegate.atLaunch = [&] {
    other = std::thread([&] {
      otherIsMain = queue.isMain();
      std::this_thread::sleep_for(10ms);
      queue.post([&] {
        workIsOnMain = queue.isMain();
        application.terminate();
      });
    });
  };
  application.run();
  other.join();
  EXPECT_FALSE(otherIsMain);
  EXPECT_TRUE(workIsOnMain);
}

TEST_P(MainLoopContract, PostsOfManyThreadsAllRun) {
  constexpr int each = 200;
  int ran = 0;
  std::vector<std::thread> others;
  const auto work = [&] {
    if (++ran == 4 * each) application.terminate();
  };
  delegate.atLaunch = [&] {
    for (int thread = 0; thread < 4; ++thread) {
      others.emplace_back([&] {
        for (int post = 0; post < each; ++post)
          queue.post(work);
      });
    }
  };
  application.run();
  for (auto& other : others)
    other.join();
  EXPECT_EQ(ran, 4 * each);
}

TEST_P(MainLoopContract, URLsReachARunningApplication) {
  delegate.atLaunch = [this] { backend->sendURLs({"tamo-core://sync", "tamo-core://status"}); };
  delegate.atURLs = ending();
  application.run();
  EXPECT_EQ(delegate.notes, (Texts{"launched", "open tamo-core://sync tamo-core://status"}));
}

TEST_P(MainLoopContract, URLsArriveWhileADelayPasses) {
  delegate.atLaunch = [this] {
    queue.postAfter(50ms, ending());
    backend->sendURLs({"tamo-core://sync"});
    backend->sendURLs({"tamo-core://status"});
  };
  application.run();
  EXPECT_EQ(delegate.notes, (Texts{"launched", "open tamo-core://sync", "open tamo-core://status"}));
}

TAMO_CONTRACT(MainLoopContract);

}  // namespace
}  // namespace tamo::contract

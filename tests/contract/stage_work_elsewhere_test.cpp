#include <gtest/gtest.h>

#include "fakes/fake_main_queue.hpp"
#include "fakes/fake_threads.hpp"
#include "platform/stage/work_elsewhere.hpp"

namespace tamo::stage {
namespace {

class WorkElsewhereTest : public ::testing::Test {
 protected:
  void runNoting() {
    runElsewhere(threads, queue, [this] { ++ran; });
  }

  fakes::Ledger ledger;
  fakes::FakeClock clock{ledger};
  fakes::FakeThreads threads{ledger, clock};
  fakes::FakeMainQueue queue{ledger, clock};
  int ran = 0;
};

TEST_F(WorkElsewhereTest, AThreadOfItsOwnRunsIt) {
  runNoting();
  EXPECT_TRUE(queue.idle());
  threads.runAll();
  EXPECT_EQ(ran, 1);
}

TEST_F(WorkElsewhereTest, WithoutAThreadALaterTurnOfTheMainQueueRunsItOnce) {
  threads.available = false;
  runNoting();
  EXPECT_EQ(ran, 0);
  queue.runPosted();
  EXPECT_EQ(ran, 1);
  EXPECT_TRUE(threads.waiting.empty());
}

}  // namespace
}  // namespace tamo::stage

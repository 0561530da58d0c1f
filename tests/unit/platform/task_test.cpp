#include "platform/task.hpp"

#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include "fakes/fake_main_queue.hpp"
#include "platform/completion.hpp"
#include "platform/error.hpp"

namespace tamo::platform {
namespace {

class TaskTest : public ::testing::Test {
 protected:
  fakes::Ledger ledger;
  fakes::FakeClock clock{ledger};
  fakes::FakeMainQueue queue{ledger, clock};
};

Task<int> answer(int value) {
  co_return value;
}

Task<int> sum(int left, int right) {
  auto first = answer(left);
  const auto a = co_await first;
  auto second = answer(right);
  const auto b = co_await second;
  co_return a + b;
}

Task<int> failing() {
  throw Error("Domain", 7, "text");
  co_return 0;
}

Task<std::string> awaitsFailing() {
  auto task = failing();
  const auto value = co_await task;
  co_return std::to_string(value);
}

Task<int> awaits(Completion<int> completion) {
  const auto value = co_await completion;
  co_return value;
}

Task<Nothing> holds(Completion<int> completion, std::shared_ptr<int> held) {
  const auto value = co_await completion;
  *held += value;
  co_return Nothing();
}

Task<int> deep(int depth) {
  if (depth == 0) co_return 0;
  auto task = deep(depth - 1);
  const auto below = co_await task;
  co_return below + 1;
}

TEST_F(TaskTest, NothingRunsBeforeTheStart) {
  auto task = answer(5);
  EXPECT_FALSE(task.done());
  task.start();
  EXPECT_TRUE(task.done());
  EXPECT_EQ(task.take(), 5);
}

TEST_F(TaskTest, NestedTasksGiveTheirValues) {
  auto task = sum(40, 2);
  task.start();
  EXPECT_EQ(task.take(), 42);
}

TEST_F(TaskTest, AnErrorTravelsThroughEveryTaskUnchanged) {
  auto task = awaitsFailing();
  task.start();
  try {
    static_cast<void>(task.take());
    FAIL() << "nothing was raised";
  } catch (const Error& error) {
    EXPECT_EQ(error.domain(), "Domain");
    EXPECT_EQ(error.code(), 7);
    EXPECT_EQ(error.description(), "text");
  }
}

TEST_F(TaskTest, ManyNestedTasksEndInOrder) {
  auto task = deep(1000);
  task.start();
  EXPECT_EQ(task.take(), 1000);
}

TEST_F(TaskTest, ATaskDestroyedWhileSuspendedLetsGoOfWhatItHolds) {
  const auto held = std::make_shared<int>(0);
  const Completion<int> completion(queue);
  {
    auto task = holds(completion, held);
    task.start();
    EXPECT_EQ(held.use_count(), 2);
  }
  EXPECT_EQ(held.use_count(), 1);
  EXPECT_EQ(*held, 0);
}

TEST_F(TaskTest, AMovedTaskBelongsToItsNewOwner) {
  auto first = answer(3);
  auto second = std::move(first);
  second = answer(4);
  second.start();
  EXPECT_EQ(second.take(), 4);
}

TEST_F(TaskTest, ATaskMovedOntoItselfIsKept) {
  auto task = answer(3);
  auto& same = task;
  task = std::move(same);
  task.start();
  EXPECT_EQ(task.take(), 3);
}

TEST_F(TaskTest, ADeliveryAfterTheWaitResumesInALaterTurn) {
  const Completion<int> completion(queue);
  auto task = awaits(completion);
  task.start();
  completion.deliver(9);
  EXPECT_FALSE(task.done());
  queue.runUntilIdle();
  ASSERT_TRUE(task.done());
  EXPECT_EQ(task.take(), 9);
}

TEST_F(TaskTest, ADeliveryBeforeTheWaitIsNotLost) {
  const Completion<int> completion(queue);
  completion.deliver(9);
  auto task = awaits(completion);
  task.start();
  EXPECT_FALSE(task.done());
  queue.runUntilIdle();
  ASSERT_TRUE(task.done());
  EXPECT_EQ(task.take(), 9);
}

TEST_F(TaskTest, ADeliveryThatNobodyWaitsForPostsNothing) {
  const Completion<int> completion(queue);
  completion.deliver(9);
  EXPECT_TRUE(queue.idle());
}

TEST_F(TaskTest, ADeliveryFromAnotherThreadResumesOnTheMainThread) {
  const Completion<int> completion(queue);
  auto task = awaits(completion);
  task.start();
  std::thread([completion] { completion.deliver(11); }).join();
  queue.runUntilIdle();
  ASSERT_TRUE(task.done());
  EXPECT_EQ(task.take(), 11);
}

TEST_F(TaskTest, ADeliveryToATaskThatWasDestroyedMeanwhileResumesNothing) {
  const auto held = std::make_shared<int>(0);
  const Completion<int> completion(queue);
  {
    auto task = holds(completion, held);
    task.start();
  }
  completion.deliver(1);
  queue.runUntilIdle();
  EXPECT_EQ(*held, 0);
}

TEST_F(TaskTest, ATaskDestroyedBetweenDeliveryAndResumptionIsLeftAlone) {
  const auto held = std::make_shared<int>(0);
  const Completion<int> completion(queue);
  {
    auto task = holds(completion, held);
    task.start();
    completion.deliver(1);
  }
  queue.runUntilIdle();
  EXPECT_EQ(*held, 0);
}

TEST_F(TaskTest, WithoutADeliveryTheTaskWaits) {
  const Completion<int> completion(queue);
  auto task = awaits(completion);
  task.start();
  queue.runUntilIdle();
  EXPECT_FALSE(task.done());
}

TEST_F(TaskTest, ASecondDeliveryIsFatal) {
  const Completion<int> completion(queue);
  completion.deliver(1);
  EXPECT_DEATH(completion.deliver(2), "fatal: a completion was delivered twice");
}

TEST_F(TaskTest, AResumptionOffTheMainThreadIsFatal) {
  const Completion<int> completion(queue);
  auto task = awaits(completion);
  task.start();
  completion.deliver(1);
  EXPECT_DEATH(std::thread([this] { queue.runPosted(); }).join(),
               "fatal: a resumed operation entered off the main thread");
}

TEST_F(TaskTest, AwaitingOffTheMainThreadIsFatal) {
  const Completion<int> completion(queue);
  EXPECT_DEATH(std::thread([completion] {
                 auto task = awaits(completion);
                 task.start();
               }).join(),
               "fatal: an awaited completion entered off the main thread");
}

}  // namespace
}  // namespace tamo::platform

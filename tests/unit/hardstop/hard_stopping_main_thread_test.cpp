#include <coroutine>
#include <thread>

#include "unit/hardstop/hard_stopping_rig.hpp"

namespace tamo {
namespace {

using platform::Task;

/// Goes on in another thread, as an operation does that forgot where it belongs.
struct Elsewhere {
  [[nodiscard]] bool await_ready() const noexcept { return false; }
  void await_suspend(std::coroutine_handle<> waiting) const {
    std::thread([waiting] { waiting.resume(); }).join();
  }
  void await_resume() const noexcept {}
};

Task<std::int32_t> endingElsewhere() {
  const Elsewhere elsewhere;
  co_await elsewhere;
  co_return 0;
}

class HardStoppingMainThreadDeathTest : public HardStoppingRig {};

TEST_F(HardStoppingMainThreadDeathTest, AStopRequestThatEndsInAnotherThreadIsFatal) {
  const Operation ends = [] { return endingElsewhere(); };
  EXPECT_DEATH(static_cast<void>(stopped(ends)), "fatal: a stop request's end entered off the main thread");
}

}  // namespace
}  // namespace tamo

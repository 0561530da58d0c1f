#include "platform/stage/work_elsewhere.hpp"

namespace tamo::stage {

void runElsewhere(platform::Threads& threads, platform::MainQueue& queue, const std::function<void()>& work) {
  if (!threads.detach(work)) queue.post(work);
}

}  // namespace tamo::stage

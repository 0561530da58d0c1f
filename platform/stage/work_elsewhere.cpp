#include "platform/stage/work_elsewhere.hpp"

namespace tamo::stage {

/// Without a thread it is done in a later turn and never within the call: who asks counts on having returned before
/// the answer comes.
void runElsewhere(platform::Threads& threads, platform::MainQueue& queue, const std::function<void()>& work) {
  if (!threads.detach(work)) queue.post(work);
}

}  // namespace tamo::stage

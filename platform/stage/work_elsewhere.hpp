#pragma once

#include <functional>

#include "platform/main_queue.hpp"
#include "platform/threads.hpp"

namespace tamo::stage {

/// Runs `work` later, never inside the call: on a thread of its own, or, when none can be had, on a turn of the
/// main queue, which it then holds up. Any thread.
void runElsewhere(platform::Threads& threads, platform::MainQueue& queue, const std::function<void()>& work);

}  // namespace tamo::stage

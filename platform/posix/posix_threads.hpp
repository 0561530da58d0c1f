#pragma once

#include "platform/threads.hpp"

namespace tamo::platform {

class PosixThreads final : public Threads {
 public:
  void detach(std::function<void()> work) override;
};

}  // namespace tamo::platform

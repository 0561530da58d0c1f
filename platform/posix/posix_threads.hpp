#pragma once

#include "platform/threads.hpp"

namespace tamo::platform {

class PosixThreads final : public Threads {
 public:
  [[nodiscard]] bool detach(std::function<void()> work) override;
};

}  // namespace tamo::platform

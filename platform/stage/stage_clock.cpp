#include "platform/stage/stage_clock.hpp"

#include "values/text.hpp"

namespace tamo::stage {

std::chrono::system_clock::time_point StageClock::wallNow() const {
  const auto ahead = values::decimalInt32(root_.setting("clock-ahead", "0")).value_or(0);
  return host_.wallNow() + std::chrono::seconds(ahead);
}

}  // namespace tamo::stage

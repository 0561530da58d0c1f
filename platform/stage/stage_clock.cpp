#include "platform/stage/stage_clock.hpp"

#include "values/text.hpp"

namespace tamo::stage {

/// The setting is read at each look, so that a rehearsal can set the clock while a companion waits. It moves the wall
/// clock alone: the monotonic one can be set on no system.
std::chrono::system_clock::time_point StageClock::wallNow() const {
  const auto ahead = values::decimalInt32(root_.setting("clock-ahead", "0")).value_or(0);
  return host_.wallNow() + std::chrono::seconds(ahead);
}

}  // namespace tamo::stage

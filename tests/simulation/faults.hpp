#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "simulation/dice.hpp"

namespace tamo::simulation {

/// Every call to the platform that is noted, may fail or may take its time.
#define TAMO_SIMULATED_CALLS(CALL) \
  CALL(becomeAccessory)            \
  CALL(terminate)                  \
  CALL(agentStatus)                \
  CALL(registerAgent)              \
  CALL(unregisterAgent)            \
  CALL(openLoginItems)             \
  CALL(runningApplications)        \
  CALL(openApplication)            \
  CALL(startTool)                  \
  CALL(toolRunning)                \
  CALL(toolWait)                   \
  CALL(toolTerminate)              \
  CALL(toolErrors)                 \
  CALL(processInfo)                \
  CALL(kill)                       \
  CALL(detach)                     \
  CALL(exists)                     \
  CALL(readWhole)                  \
  CALL(resolvedPath)               \
  CALL(writeAtomically)            \
  CALL(createDirectories)          \
  CALL(remove)                     \
  CALL(openForWriting)             \
  CALL(isWritable)                 \
  CALL(moveToTrash)                \
  CALL(openLock)                   \
  CALL(tryLock)                    \
  CALL(unlock)                     \
  CALL(closeLock)                  \
  CALL(originalLocation)           \
  CALL(passwordEntry)              \
  CALL(sleep)                      \
  CALL(accepts)                    \
  CALL(log)

#define TAMO_CALL_NAME(name) name,
enum class Call : std::size_t { TAMO_SIMULATED_CALLS(TAMO_CALL_NAME) };
#undef TAMO_CALL_NAME
#define TAMO_CALL_ONE(name) +1
inline constexpr std::size_t callCount = 0 TAMO_SIMULATED_CALLS(TAMO_CALL_ONE);
#undef TAMO_CALL_ONE
[[nodiscard]] std::string_view nameOf(Call call);

enum class ToolTrouble { None, Slow, Hangs, Fails, Garbage, Signalled };

/// What goes wrong in a run, and how often. Most runs have no faults or few: a run in which everything fails
/// gets nowhere.
class Faults {
 public:
  explicit Faults(Dice& dice);

  /// Whether the call fails this time, in the way that its interface allows.
  [[nodiscard]] bool strikes(Call call);
  /// How long the call takes; 0 nearly always.
  [[nodiscard]] Time slowness();
  /// How much longer than asked a sleep takes; 0 in most runs.
  [[nodiscard]] Time oversleep();
  [[nodiscard]] ToolTrouble toolTrouble();

 private:
  Dice& dice_;
  unsigned inThousand_ = 0;
  unsigned slowInThousand_ = 0;
  unsigned toolsInThousand_ = 0;
  bool oversleeps_ = false;
  /// One call that fails every other time.
  bool picks_ = false;
  Call picked_ = Call::log;
};

}  // namespace tamo::simulation

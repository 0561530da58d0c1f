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
  CALL(log)                        \
  CALL(temporaryDirectory)

#define TAMO_CALL_NAME(name) name,
enum class Call : std::size_t { TAMO_SIMULATED_CALLS(TAMO_CALL_NAME) };
#undef TAMO_CALL_NAME
#define TAMO_CALL_ONE(name) +1
inline constexpr std::size_t callCount = 0 TAMO_SIMULATED_CALLS(TAMO_CALL_ONE);
#undef TAMO_CALL_ONE
/// Whether chance makes the call fail. The others have no way to tell a failure, or fail only where a run follows a script:
/// a temporary directory that is missing, for one, stops the process when the lock asks for it.
[[nodiscard]] constexpr bool mayFail(Call call) {
  switch (call) {
    case Call::becomeAccessory:
    case Call::terminate:
    case Call::agentStatus:
    case Call::openLoginItems:
    case Call::toolRunning:
    case Call::toolTerminate:
    case Call::toolErrors:
    case Call::closeLock:
    case Call::sleep:
    case Call::log:
    case Call::temporaryDirectory:
      return false;
    default:
      return true;
  }
}
[[nodiscard]] constexpr std::size_t failingCalls() {
  std::size_t count = 0;
  for (std::size_t call = 0; call < callCount; ++call)
    if (mayFail(static_cast<Call>(call))) ++count;
  return count;
}
[[nodiscard]] std::string_view nameOf(Call call);

/// In which way a call fails, or a tool misbehaves.
#define TAMO_WAYS(WAY)                                              \
  WAY(None)                                                         \
  WAY(Fails)   /* plainly: false, absent, an error, not started */  \
  WAY(Late)    /* with an error after more than the grace period */ \
  WAY(Empty)   /* bytes are missing, all of them */                 \
  WAY(Torn)    /* the second half is missing */                     \
  WAY(Garbage) /* other bytes */                                    \
  WAY(Binary)  /* bytes that are no text */                         \
  WAY(Zero)    /* a status: not registered */                       \
  WAY(One)     /* a status: enabled */                              \
  WAY(Two)     /* a status: requires approval */                    \
  WAY(Three)   /* a status: not found */                            \
  WAY(Slow)                                                         \
  WAY(Hangs)                                                        \
  WAY(Exits)     /* with 1, having done nothing */                  \
  WAY(NotLoaded) /* exits with 113 */                               \
  WAY(Signalled)                                                    \
  WAY(Answered) /* exits with 1, having printed its answer */       \
  WAY(AnsweredHangs)                                                \
  WAY(Idle) /* exits with 0, having done nothing */                 \
  WAY(Part) /* leaves a part of a copy */                           \
  WAY(Cancelled)

#define TAMO_WAY_NAME(name) name,
enum class Way : std::size_t { TAMO_WAYS(TAMO_WAY_NAME) };
#undef TAMO_WAY_NAME
#define TAMO_WAY_ONE(name) +1
inline constexpr std::size_t wayCount = 0 TAMO_WAYS(TAMO_WAY_ONE);
#undef TAMO_WAY_ONE
[[nodiscard]] std::string_view nameOf(Way way);

/// What goes wrong in a run, and how often. Most runs have no faults or few: a run in which everything fails
/// gets nowhere.
class Faults {
 public:
  explicit Faults(Dice& dice);

  /// Whether a call that may fail does so this time, in the way that its interface allows.
  [[nodiscard]] bool strikes(Call call);
  /// How long the call takes; 0 nearly always.
  [[nodiscard]] Time slowness();
  /// How much longer than asked a sleep takes; 0 in most runs.
  [[nodiscard]] Time oversleep();
  [[nodiscard]] Way toolTrouble();

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

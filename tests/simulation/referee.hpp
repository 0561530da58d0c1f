#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/kernel_processes.hpp"
#include "platform/log.hpp"
#include "simulation/companion.hpp"

/// Judges every step of a companion by what it did, what it was told, and how the world is. It knows the
/// rules, not the code that follows them.
namespace tamo::simulation::Referee {

// The hard stop.
void looked(Companion& companion, std::int32_t pid, const std::optional<platform::ProcessInfo>& told);
/// A watcher starts.
void watching(Companion& companion);
/// A companion sends SIGKILL. Called before it takes effect.
void signals(Companion& companion, std::int32_t target, bool toGroup);
/// A stop request was told to have failed.
void stopFailed(Companion& companion);
void watchEnded(Companion& companion, std::size_t stop);
void stopNoted(Companion& companion, const platform::LogLine& line);

// The lock, and what may be done under it alone.
void triesLock(Companion& companion, bool gained);
void letsLockGo(Companion& companion);
void givesLockUp(Companion& companion);
/// A companion changes something of the agent or of the installed application.
void acts(Companion& companion, std::string_view deed);

// What is told.
void logs(Companion& companion, const platform::LogLine& line);
void writesReceipt(Companion& companion, std::string_view path, std::string_view bytes);
void recordsMove(Companion& companion, std::string_view bytes);
void opensInstalled(Companion& companion);
/// A launchctl that took so long, from its start to the companion's last interest in it.
void launchctlTook(Companion& companion, Time duration, Time slow);

/// Copies were changed by anybody.
void copiesChanged(World& world);

/// A companion ended by itself.
void ended(Companion& companion);
/// Nothing can happen any more, or too much did.
void runEnded(World& world, bool inTime);

}  // namespace tamo::simulation::Referee

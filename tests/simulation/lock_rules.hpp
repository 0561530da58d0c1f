#pragma once

#include <string_view>

#include "simulation/companion.hpp"

/// The rules of the job lock, and of what may be done only under it.
namespace tamo::simulation::Referee {

void triesLock(Companion& companion, bool gained);
void letsLockGo(Companion& companion);
/// A companion goes on without the lock.
void givesLockUp(Companion& companion);
/// A companion changes something of the agent or of the installed application: "register", "unregister",
/// "kickstart", "kickstart -k", "copy", "remove" or "trash".
void acts(Companion& companion, std::string_view deed);
/// A launchctl took that long, from its start to the companion's last interest in it, and slow calls held the
/// companion up for that long meanwhile.
void launchctlTook(Companion& companion, Time duration, Time slow);

}  // namespace tamo::simulation::Referee

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/kernel_processes.hpp"
#include "platform/log.hpp"
#include "simulation/companion.hpp"

/// The rules of the hard stop, as the looks, the signals and the note show it.
namespace tamo::simulation::Referee {

/// A companion was told of a process.
void looked(Companion& companion, std::int32_t pid, const std::optional<platform::ProcessInfo>& told);
/// A watcher is started, and then begins in a thread of its own.
void watching(Companion& companion);
void watchBegins(Companion& companion, std::size_t stop);
/// A companion asks whether a marker of a revert is there, and is told.
void asksForMarker(Companion& companion, std::string_view path, bool told);
/// A companion sends SIGKILL. Called before that takes effect.
void signals(Companion& companion, std::int32_t target, bool toGroup);
/// A companion was told that its stop request failed.
void stopFailed(Companion& companion);
/// A companion makes a stop request: a kickstart with kill, or the unregistering of a reseat.
void asksToStop(Companion& companion);
void watchEnded(Companion& companion, std::size_t stop);
void stopNoted(Companion& companion, const platform::LogLine& line);

}  // namespace tamo::simulation::Referee

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "platform/kernel_processes.hpp"
#include "platform/log.hpp"
#include "simulation/companion.hpp"

/// The rules of the hard stop, as the looks, the signals and the note show it.
namespace tamo::simulation::Referee {

/// A companion was told of a process.
void looked(Companion& companion, std::int32_t pid, const std::optional<platform::ProcessInfo>& told);
/// A watcher starts.
void watching(Companion& companion);
/// A companion sends SIGKILL. Called before that takes effect.
void signals(Companion& companion, std::int32_t target, bool toGroup);
/// A companion was told that its stop request failed.
void stopFailed(Companion& companion);
void watchEnded(Companion& companion, std::size_t stop);
void stopNoted(Companion& companion, const platform::LogLine& line);

}  // namespace tamo::simulation::Referee

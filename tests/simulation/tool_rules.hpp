#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/processes.hpp"
#include "simulation/companion.hpp"

/// The rules of the tools: which are started when, with which words and which streams.
namespace tamo::simulation::Referee {

/// A companion starts a tool, or tries to.
void startsTool(Companion& companion, const platform::ToolLaunch& launch);
/// What the companion learns of the how-manieth tool that it started: its status, or -1.
void toolTold(Companion& companion, std::size_t tool, std::int32_t status);
/// A companion reads so much of a tool's standard error.
void readsErrors(Companion& companion, const platform::ToolLaunch& launch, std::size_t limit);
/// The copying is over: everything that belongs to it was started.
void copyingEnded(Companion& companion);

}  // namespace tamo::simulation::Referee

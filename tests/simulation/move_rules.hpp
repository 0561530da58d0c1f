#pragma once

#include <string_view>

#include "platform/log.hpp"
#include "simulation/companion.hpp"

/// The rules of the move to Applications.
namespace tamo::simulation::Referee {

/// Copies of the application were changed, by a companion or by a tool.
void copiesChanged(World& world);
/// A companion starts to copy plainly.
void copies(Companion& companion);
/// A companion logs how its move ended.
void movedOrNot(Companion& companion, const platform::LogLine& line);
/// A companion writes the result file.
void recordsMove(Companion& companion, std::string_view bytes);
void opensInstalled(Companion& companion, std::string_view path);

}  // namespace tamo::simulation::Referee

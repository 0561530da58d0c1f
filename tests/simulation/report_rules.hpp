#pragma once

#include <string_view>

#include "platform/log.hpp"
#include "simulation/companion.hpp"

/// The rules of what a companion reports: its log lines, its receipt, and the settings that it shows to the user.
namespace tamo::simulation::Referee {

void logs(Companion& companion, const platform::LogLine& line);
/// A companion opens the login-items settings.
void opensSettings(Companion& companion);
void writesReceipt(Companion& companion, std::string_view path, std::string_view bytes);

}  // namespace tamo::simulation::Referee

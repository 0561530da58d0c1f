#pragma once

#include <string_view>

#include "platform/log.hpp"
#include "simulation/companion.hpp"

/// The rules of what a companion reports: its log lines and its receipt.
namespace tamo::simulation::Referee {

void logs(Companion& companion, const platform::LogLine& line);
void writesReceipt(Companion& companion, std::string_view path, std::string_view bytes);

}  // namespace tamo::simulation::Referee

#pragma once

#include <string>
#include <vector>

#include "app/tamo_core_config.hpp"
#include "platform/platform.hpp"

namespace tamo::CoreMain {

/// Makes the process an accessory application with one CoreDelegate and runs its main loop. Never returns
/// while the application runs; where the platform's terminate request ends the process, it never returns at
/// all.
void main(const platform::Platform& platform, const TamoCoreConfig& config,
          std::vector<std::string> arguments);

}  // namespace tamo::CoreMain

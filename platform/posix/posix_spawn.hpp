#pragma once

#include <optional>
#include <string>
#include <sys/types.h>

#include "platform/processes.hpp"

namespace tamo::platform {

/// Starts `executable` as `launch` says, its standard error going to the descriptor `errors`, or to the null
/// device when that is -1. Gives the child's pid; absent when it could not be started.
[[nodiscard]] std::optional<pid_t> spawn(const ToolLaunch& launch, const std::string& executable, int errors);

}  // namespace tamo::platform

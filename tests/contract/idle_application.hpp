#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace tamo::contract {

/// Lays a whole application at a host path, whose program does nothing until it is ended. Gives the path.
[[nodiscard]] std::string layIdleApplication(const std::string& bundle, const std::string& identifier);

/// The pids of the living processes whose program lies in the bundle at this host path now.
[[nodiscard]] std::vector<pid_t> pidsOf(const std::string& bundle);

}  // namespace tamo::contract

#pragma once

#include <functional>

namespace tamo::soak {

/// Runs `work` in a process of a pid namespace of its own, with /proc to match, and gives its exit status.
/// There a pid can be chosen for a new process, nothing that goes astray can hit the rest of the machine, and
/// the kernel ends whatever is left when the work is done. An ordinary user gets a user namespace as well.
/// Gives 77 with a line on standard error where the machine allows no such namespaces.
[[nodiscard]] int inOwnWorld(const std::function<int()>& work);

}  // namespace tamo::soak

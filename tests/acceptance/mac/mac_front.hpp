#pragma once

#include <string>

namespace tamo::acceptance {

/// The path of the application in front, as the system tells it; empty without one. Main thread: it lets the main loop
/// turn for a moment, because only then does the system's answer change.
[[nodiscard]] std::string frontmostApplication();

}  // namespace tamo::acceptance

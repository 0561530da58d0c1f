#pragma once

#include "acceptance/redaction.hpp"

namespace tamo::acceptance {

/// Whoever this process runs for, as POSIX tells it; the serial is left empty.
[[nodiscard]] Identity identityOfThisProcess();

}  // namespace tamo::acceptance

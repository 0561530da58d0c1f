#pragma once

#include <string>

namespace tamo::stage {

/// One line of a stage program's own log, with the UTC time in front, in one write: "TIME TEXT".
void logLine(int descriptor, const std::string& text);

}  // namespace tamo::stage

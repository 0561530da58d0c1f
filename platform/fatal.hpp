#pragma once

#include <string_view>

namespace tamo::platform {

/// Ends the process for a condition that cannot occur in a sane installation: writes `reason` as one line to
/// standard error, then aborts. Any thread. Release builds stop as well; nothing is unwound.
[[noreturn]] void fatal(std::string_view reason) noexcept;

}  // namespace tamo::platform

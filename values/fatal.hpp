#pragma once

#include <string_view>

namespace tamo::values {

/// Ends the process for a condition that cannot occur in a sane installation: writes `reason` as one line to
/// standard error, says it as setLastWords() has it, then aborts. Any thread. Release builds stop as well;
/// nothing is unwound.
[[noreturn]] void fatal(std::string_view reason) noexcept;

/// Says why the process ends in another place than standard error, which a process that the system starts may
/// not have. It is called at most once in a process, on the thread that is fatal.
using LastWords = void (*)(std::string_view reason) noexcept;

/// What fatal() calls before it aborts; null, as it is at first, for nothing. Set by whoever makes the host,
/// as the first thing. Any thread.
void setLastWords(LastWords say) noexcept;

}  // namespace tamo::values

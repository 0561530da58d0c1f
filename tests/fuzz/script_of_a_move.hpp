#pragma once

#include <string>

namespace tamo::fuzz {

/// The script by which a move asks the administrator to copy, as the move hands it to osascript: its lines,
/// each closed by a line feed.
[[nodiscard]] const std::string& scriptOfAMove();

}  // namespace tamo::fuzz

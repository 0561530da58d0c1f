#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tamo::fuzz {

/// The words that a POSIX shell makes of a command of plain words, single quotes and backslashes; "&&" is a word
/// of its own. Absent for a command that holds anything else to which a shell gives a meaning, outside quotes,
/// or that is not closed.
[[nodiscard]] std::optional<std::vector<std::string>> shellWords(std::string_view command);

}  // namespace tamo::fuzz

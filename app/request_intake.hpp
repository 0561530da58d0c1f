#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// How an action is asked for: by the command line's switch or by a URL. Pure functions, any thread.
namespace tamo::RequestIntake {

/// The text that follows the first "--core-action" of the process arguments, the program path included,
/// whatever it says: unknown names are the dispatch's business. Bytes that are no UTF-8 are repaired, as a Mac
/// does when it makes arguments texts. Absent without the switch, and when it is the last argument, also if a
/// later switch would have a value.
[[nodiscard]] std::optional<std::string> actionOfArguments(const std::vector<std::string>& arguments);

/// The action that a URL's absolute string asks for: the scheme compared with case, then what follows the
/// colon without the "/" at both ends, which must be one of the seven names. A query or a fragment is part of
/// the name, and so refused. Absent otherwise.
[[nodiscard]] std::optional<std::string> actionOfUrl(std::string_view url, std::string_view scheme);

}  // namespace tamo::RequestIntake

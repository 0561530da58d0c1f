#pragma once

#include <string>
#include <vector>

#include "platform/stage/stage_root.hpp"

/// The stage's ditto: copies a bundle with modes, links, times and extended attributes, in the hands of the
/// machine's own cp.
///
/// Known differences from a Mac: it takes a source and a destination and no option; a source that is a link
/// is followed; a folder that is missing above the destination is an error; there are no resource forks, and
/// access control lists are what cp makes of them.
namespace tamo::stage {

/// The words of the command that copies one host path to another: into a folder that is there, next to what
/// it holds, as ditto does.
[[nodiscard]] std::vector<std::string> copyingCommand(const std::string& from, const std::string& to);

/// Has the fault that is ordered for ditto, under the verb "administrator" when the administrator runs it and
/// "user" otherwise; then turns into the copying program. Returns only when nothing is copied, with the exit
/// status; the paths are stage paths.
[[nodiscard]] int runDitto(const StageRoot& root, const std::vector<std::string>& arguments);

}  // namespace tamo::stage

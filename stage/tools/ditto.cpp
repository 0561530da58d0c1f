#include "stage/tools/ditto.hpp"

#include <cerrno>
#include <cstring>
#include <iostream>
#include <unistd.h>

#include "platform/posix/argument_vector.hpp"
#include "stage/common/exit_status.hpp"
#include "stage/common/tool_fault.hpp"

namespace tamo::stage {
namespace {

int complain(const std::string& path, int error) {
  std::cerr << "ditto: " << path << ": " << std::strerror(error) << "\n";
  return kFailed;
}

/// An item that is there is written into, through a link as well.
std::optional<std::string> destination(const StageRoot& root, const std::string& path) {
  const auto item = root.existing(path);
  return item ? item : root.entry(path);
}

/// In this very process, so that whoever ends the tool ends the copying.
int become(std::vector<std::string> words) {
  ::execv(words.front().c_str(), platform::vectorOf(words).data());
  return complain(words.front(), errno);
}

}  // namespace

/// Into a folder that is there ditto copies what the source holds, where cp by itself would make another folder
/// within. Nothing behind "--" is an option, whatever a path begins with.
std::vector<std::string> copyingCommand(const std::string& from, const std::string& to) {
  return {"/bin/cp", "--archive", "--no-target-directory", "--", from, to};
}

/// The fault goes by who runs this: the same program copies for the user and for the administrator, and a rehearsal
/// mostly wants one of the two to fail.
int runDitto(const StageRoot& root, const std::vector<std::string>& arguments) {
  if (const auto status = sufferFault(root, "ditto", actingUser())) return *status;
  if (arguments.size() != 2) {
    std::cerr << "Usage: ditto <source> <destination>\n";
    return kFailed;
  }
  const auto from = root.existing(arguments[0]);
  if (!from) return complain(arguments[0], ENOENT);
  const auto to = destination(root, arguments[1]);
  if (!to) return complain(arguments[1], ENOENT);
  return become(copyingCommand(*from, *to));
}

}  // namespace tamo::stage

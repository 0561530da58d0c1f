#include "stage/launchd/launchctl.hpp"

#include <iostream>

#include "platform/stage/launchd_wire.hpp"
#include "stage/common/exit_status.hpp"
#include "stage/common/tool_fault.hpp"

namespace tamo::stage {
namespace {

int usage(const std::string& verb) {
  std::cerr << "Unrecognized use of launchctl " << verb << ".\n"
            << "Usage: launchctl print <service-target> | kickstart [-k] <service-target> |\n"
            << "       bootstrap <domain-target> <plist> | bootout <service-target>\n";
  return kUsage;
}

}  // namespace

/// The stage knows the four verbs that the companion and its rehearsals use.
std::optional<std::vector<std::string>> launchctlQuestion(const std::vector<std::string>& arguments) {
  const auto verb = arguments.empty() ? std::string() : arguments.front();
  const bool killing = arguments.size() > 1 && arguments[1] == "-k";
  if ((verb == "print" || verb == "bootout") && arguments.size() == 2) return arguments;
  if (verb == "bootstrap" && arguments.size() == 3) return arguments;
  if (verb == "kickstart" && arguments.size() == (killing ? 3U : 2U)) return arguments;
  return std::nullopt;
}

/// The fault comes first: a launchctl that hangs does so before it has asked for anything.
int runLaunchctl(const StageRoot& root, const std::vector<std::string>& arguments) {
  const auto verb = arguments.empty() ? std::string() : arguments.front();
  if (const auto status = sufferFault(root, "launchctl", verb)) return *status;
  const auto question = launchctlQuestion(arguments);
  if (!question) return usage(verb);
  const auto answer = askLaunchd(root, *question);
  if (!answer) {
    std::cerr << "Could not reach launchd.\n";
    return 1;
  }
  // The errors are not held back, so the output is not either: in one stream they keep their order.
  std::cout << answer->output << std::flush;
  std::cerr << answer->errors;
  return answer->status;
}

}  // namespace tamo::stage

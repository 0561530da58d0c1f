#include "acceptance/mac/mac_other_user.hpp"

#include <algorithm>
#include <filesystem>
#include <thread>

#include "acceptance/mac/mac_tools.hpp"
#include "acceptance/mac/person.hpp"
#include "platform/posix/posix_files.hpp"

namespace tamo::acceptance {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

/// There while it is needed, for whoever logs in. In a folder where nobody can replace what is not his own.
class Script {
 public:
  explicit Script(const std::string& action) {
    const auto text = std::string("exec /usr/bin/open -n -W '") + installedCopy + companionInCopy +
                      "' --args --core-action " + action + "\n";
    if (!platform::posix::writeAtomically(scriptForOthers, text))
      throw PlaceError(std::string(scriptForOthers) + " cannot be written");
    fs::permissions(scriptForOthers, fs::perms(0644));
  }
  ~Script() {
    std::error_code none;
    fs::remove(scriptForOthers, none);
  }
  Script(const Script&) = delete;
  Script& operator=(const Script&) = delete;
};

std::vector<MacProcess> companionsOfOthers() {
  return processesEndingWith(installedCopy + std::string(companionProgram), Whose::Others);
}

}  // namespace

/// A companion lives for half a second and longer.
pid_t MacOtherUser::start(const std::string& action) {
  journal_.willMake(scriptForOthers);
  askPerson(settings_,
            std::string("log in as another user as well, without logging out here, and type \"sh ") +
                scriptForOthers + "\" in a terminal there");
  const Script script(action);
  since_ = evidence_.now();
  for (int look = 0; look < 6000; ++look) {
    if (const auto found = companionsOfOthers(); !found.empty()) return companion_ = found.front().pid;
    std::this_thread::sleep_for(100ms);
  }
  throw CannotArrange("no other user started a companion within ten minutes");
}

bool MacOtherUser::ended() {
  return std::ranges::count(companionsOfOthers(), companion_, &MacProcess::pid) == 0;
}

/// The log of a Mac is everybody's, and its administrators read all of it.
std::vector<Line> MacOtherUser::lines() {
  auto lines = evidence_.lines(since_, 1);
  std::erase_if(lines, [&](const Line& line) { return line.pid != companion_; });
  return lines;
}

}  // namespace tamo::acceptance

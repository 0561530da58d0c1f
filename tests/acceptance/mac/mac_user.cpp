#include "acceptance/mac/mac_user.hpp"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <sys/syslimits.h>
#include <thread>
#include <unistd.h>

#include "acceptance/mac/mac_front.hpp"
#include "acceptance/mac/mac_tools.hpp"
#include "acceptance/mac/person.hpp"

namespace tamo::acceptance {
namespace {

using namespace std::chrono_literals;

constexpr auto settingsPane = "x-apple.systempreferences:com.apple.LoginItems-Settings.extension";

}  // namespace

void MacUser::open(Copy copy) {
  need({"/usr/bin/open", copies_.path(copy)});
}

std::vector<RunningApp> MacUser::applications() {
  const std::string program = "/Tamo.app/Contents/MacOS/Tamo";
  std::vector<RunningApp> found;
  for (const auto& one : processesEndingWith(program, Whose::Ours))
    found.push_back({one.pid, one.path.substr(0, one.path.size() - program.size()) + "/Tamo.app"});
  return found;
}

std::string MacUser::front() {
  const auto path = frontmostApplication();
  return path.ends_with("/Tamo.app") ? path : "";
}

std::string MacUser::whereabouts(int directory) {
  std::array<char, PATH_MAX> path{};
  return ::fcntl(directory, F_GETPATH, path.data()) == 0 ? path.data() : "";
}

std::string MacUser::outcomeOf(const std::string& action) {
  const auto since = evidence_.now();
  const auto started = companions_.start({.arguments = {"--core-action", action}});
  for (int look = 0; look < 1200 && !companions_.ended(started); ++look)
    std::this_thread::sleep_for(50ms);
  const auto lines = evidence_.lines(since, 1);
  const auto ending = std::ranges::find_if(lines, endsAction);
  return ending == lines.end() ? "" : comparable(*ending);
}

/// Only what was registered once can be switched off. The status tells when it was done.
void MacUser::approve(bool granted) {
  askPerson(settings_, std::string("in the list that opens, switch Tamo ") + (granted ? "on" : "off"));
  withheld_ = true;
  if (!granted) static_cast<void>(outcomeOf("register"));
  need({"/usr/bin/open", settingsPane});
  const std::string wanted = granted ? "status -> status 1" : "status -> status 2";
  for (int look = 0; look < 60; ++look) {
    if (outcomeOf("status").starts_with(wanted)) {
      withheld_ = !granted;
      return;
    }
    std::this_thread::sleep_for(3s);
  }
  throw CannotArrange("Tamo was not switched within the time");
}

void MacUser::loseApplications(const std::string& answer) {
  if (::access("/Applications", W_OK) == 0)
    throw CannotArrange("this user may write to /Applications; a standard user may not");
  askPerson(settings_, answer == "agree"
                           ? "type an administrator's name and password where the system asks for them"
                           : "cancel the prompt for an administrator's password");
}

void MacUser::sleepAWhile() {
  askPerson(settings_, "the machine goes to sleep now; wake it after a minute");
  need({"/usr/bin/pmset", "sleepnow"});
  // The command returns before the machine sleeps, and this clock stands still meanwhile.
  std::this_thread::sleep_for(20s);
}

}  // namespace tamo::acceptance

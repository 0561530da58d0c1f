#include "acceptance/mac/mac_tools.hpp"

#include <algorithm>
#include <array>
#include <libproc.h>
#include <unistd.h>

#include "acceptance/place.hpp"

namespace tamo::acceptance {

void need(const std::vector<std::string>& words) {
  const auto run = runProgram({.words = words}, std::chrono::seconds(120));
  if (run.status != 0)
    throw PlaceError(words.front() + " failed (" + std::to_string(run.status) + "): " + run.text);
}

namespace {

std::vector<pid_t> allProcesses() {
  // A few more than there were: processes start meanwhile.
  const auto before = std::max(::proc_listpids(PROC_ALL_PIDS, 0, nullptr, 0), 0);
  std::vector<pid_t> pids(static_cast<std::size_t>(before) / sizeof(pid_t) + 64);
  const auto room = static_cast<int>(pids.size() * sizeof(pid_t));
  const auto filled = std::max(::proc_listpids(PROC_ALL_PIDS, 0, pids.data(), room), 0);
  pids.resize(static_cast<std::size_t>(filled) / sizeof(pid_t));
  return pids;
}

/// Asked in the short form, which the system tells of anybody's process.
bool isOf(pid_t pid, Whose whose) {
  proc_bsdshortinfo info{};
  const auto size = static_cast<int>(sizeof info);
  if (::proc_pidinfo(pid, PROC_PIDT_SHORTBSDINFO, 0, &info, size) != size) return false;
  return (info.pbsi_uid == ::getuid()) == (whose == Whose::Ours);
}

}  // namespace

std::vector<MacProcess> processesEndingWith(const std::string& ending, Whose whose) {
  std::vector<MacProcess> found;
  for (const auto pid : allProcesses()) {
    std::array<char, PROC_PIDPATHINFO_MAXSIZE> path{};
    if (::proc_pidpath(pid, path.data(), path.size()) <= 0) continue;
    if (std::string(path.data()).ends_with(ending) && isOf(pid, whose)) found.push_back({pid, path.data()});
  }
  return found;
}

}  // namespace tamo::acceptance

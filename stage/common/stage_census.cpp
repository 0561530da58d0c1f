#include "stage/common/stage_census.hpp"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <sstream>
#include <string_view>
#include <unistd.h>

#include "platform/posix/posix_files.hpp"
#include "values/text.hpp"

namespace tamo::stage {
namespace {

/// Absent for a process that has ended meanwhile, or that this user may not look into.
std::optional<std::string> procFile(pid_t pid, std::string_view name) {
  return platform::posix::readWhole("/proc/" + std::to_string(pid) + "/" + std::string(name));
}

std::vector<pid_t> allPids() {
  std::vector<pid_t> pids;
  std::error_code ignored;
  for (const auto& item : std::filesystem::directory_iterator("/proc", ignored))
    if (const auto pid = values::decimalInt32(item.path().filename().string())) pids.push_back(*pid);
  std::ranges::sort(pids);
  return pids;
}

/// The name in parentheses may hold anything, so the fields begin after the last one.
std::optional<StageProcess> fromStat(pid_t pid) {
  const auto stat = procFile(pid, "stat");
  if (!stat) return std::nullopt;
  const auto name = stat->rfind(')');
  if (name == std::string::npos) return std::nullopt;
  StageProcess process{.pid = pid};
  std::istringstream fields(stat->substr(name + 1));
  if (!(fields >> process.state >> process.parent >> process.group)) return std::nullopt;
  return process;
}

/// As a whole, because the directory of another stage may begin like this one's.
bool hasEntry(std::string_view environment, const std::string& entry) {
  for (std::size_t start = 0; start < environment.size();) {
    const auto end = std::min(environment.find('\0', start), environment.size());
    if (environment.substr(start, end - start) == entry) return true;
    start = end + 1;
  }
  return false;
}

std::string commandOf(pid_t pid) {
  auto command = procFile(pid, "cmdline").value_or("");
  while (command.ends_with('\0'))
    command.pop_back();
  std::ranges::replace(command, '\0', ' ');
  return command;
}

}  // namespace

/// By the environment, which a process hands to all that it starts: a group or a parent can be left.
std::vector<StageProcess> processesOfStage(const std::string& directory) {
  std::vector<StageProcess> found;
  const auto entry = "TAMO_STAGE=" + directory;
  for (const auto pid : allPids()) {
    // Who strikes a stage kills what is found here.
    if (pid == ::getpid()) continue;
    const auto environment = procFile(pid, "environ");
    if (!environment || !hasEntry(*environment, entry)) continue;
    // Dead ones that nobody has reaped hold up no end of a stage.
    auto process = fromStat(pid);
    if (!process || process->state == 'Z' || process->state == 'X') continue;
    process->command = commandOf(pid);
    found.push_back(*std::move(process));
  }
  return found;
}

std::vector<pid_t> childrenOf(pid_t parent) {
  std::vector<pid_t> children;
  for (const auto pid : allPids()) {
    const auto process = fromStat(pid);
    if (process && process->parent == parent) children.push_back(pid);
  }
  return children;
}

}  // namespace tamo::stage

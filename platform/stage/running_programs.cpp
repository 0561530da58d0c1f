#include "platform/stage/running_programs.hpp"

#include <algorithm>
#include <filesystem>

#include "platform/posix/posix_files.hpp"
#include "platform/stage/stage_bundles.hpp"
#include "platform/text.hpp"

namespace tamo::stage {
namespace {

namespace fs = std::filesystem;

std::optional<std::string> applicationOf(const StageRoot& root, const std::string& program) {
  const auto path = root.onStage(program);
  const auto bundle = path ? bundleOf(*path) : std::string();
  // A program outside any bundle belongs to no application, whatever its folder is called.
  const bool inside = bundle.ends_with(".app") && path->starts_with(bundle + "/Contents/MacOS/");
  return inside ? std::optional(bundle) : std::nullopt;
}

std::optional<RunningProgram> runningProgram(const StageRoot& root, pid_t pid) {
  const fs::path folder = "/proc/" + std::to_string(pid);
  std::error_code hidden;
  const auto executable = fs::read_symlink(folder / "exe", hidden);
  if (hidden || !root.onStage(executable.string())) return std::nullopt;
  const auto words = platform::posix::readWhole((folder / "cmdline").string()).value_or("");
  const auto bundle = applicationOf(root, words.substr(0, words.find('\0')));
  if (!bundle) return std::nullopt;
  return RunningProgram{.pid = pid, .bundle = *bundle, .executable = executable.string()};
}

}  // namespace

std::vector<RunningProgram> runningPrograms(const StageRoot& root) {
  std::vector<RunningProgram> found;
  std::error_code ignored;
  for (const auto& item : fs::directory_iterator("/proc", ignored)) {
    const auto pid = platform::decimalInt32(item.path().filename().string());
    const auto program = pid ? runningProgram(root, *pid) : std::nullopt;
    if (program) found.push_back(*program);
  }
  std::ranges::sort(found, {}, &RunningProgram::pid);
  return found;
}

std::optional<std::string> presentBundle(const StageRoot& root, const RunningProgram& program) {
  return applicationOf(root, program.executable);
}

}  // namespace tamo::stage

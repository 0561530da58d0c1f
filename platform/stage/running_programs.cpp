#include "platform/stage/running_programs.hpp"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <thread>
#include <utility>

#include "platform/posix/posix_files.hpp"
#include "platform/stage/stage_bundles.hpp"
#include "values/text.hpp"

namespace tamo::stage {
namespace {

namespace fs = std::filesystem;

std::optional<std::string> applicationOf(const StageRoot& root, const std::string& program) {
  const auto path = root.onStage(program);
  if (!path) return std::nullopt;
  auto bundle = bundleOf(*path);
  // A program outside any bundle belongs to no application, whatever its folder is called.
  const bool inside = bundle.ends_with(".app") && path->starts_with(bundle + "/Contents/MacOS/");
  return inside ? std::optional(std::move(bundle)) : std::nullopt;
}

/// A look at one process: its executable on the stage, and its command line.
struct Look {
  std::string executable;
  std::string words;
};

std::optional<Look> lookAt(const StageRoot& root, const fs::path& folder) {
  std::error_code hidden;
  const auto executable = fs::read_symlink(folder / "exe", hidden);
  if (hidden || !root.onStage(executable.string())) return std::nullopt;
  return Look{.executable = executable.string(),
              .words = platform::posix::readWhole((folder / "cmdline").string()).value_or("")};
}

/// In the middle of an exec, Linux shows the new executable already and no command line yet. An exec is over long
/// before the second that this waits at most, which is for a program that has emptied its command line itself.
std::optional<Look> lookPastExec(const StageRoot& root, const fs::path& folder) {
  auto look = lookAt(root, folder);
  for (int more = 0; more < 1000 && look && look->words.empty(); ++more) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    look = lookAt(root, folder);
  }
  return look;
}

/// By the path that it was started with, which is what a Mac shows; the executable may have been moved since.
std::optional<RunningProgram> runningProgram(const StageRoot& root, pid_t pid) {
  const auto look = lookPastExec(root, "/proc/" + std::to_string(pid));
  if (!look) return std::nullopt;
  const auto bundle = applicationOf(root, look->words.substr(0, look->words.find('\0')));
  if (!bundle) return std::nullopt;
  return RunningProgram{.pid = pid, .bundle = *bundle, .executable = look->executable};
}

}  // namespace

/// In an order of its own, because /proc keeps none.
std::vector<RunningProgram> runningPrograms(const StageRoot& root) {
  std::vector<RunningProgram> found;
  std::error_code ignored;
  for (const auto& item : fs::directory_iterator("/proc", ignored)) {
    const auto pid = values::decimalInt32(item.path().filename().string());
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

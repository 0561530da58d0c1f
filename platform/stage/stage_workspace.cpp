#include "platform/stage/stage_workspace.hpp"

#include <utility>

#include "platform/bundle_info.hpp"
#include "platform/stage/application_opening.hpp"
#include "platform/stage/running_programs.hpp"
#include "platform/stage/stage_files.hpp"
#include "platform/stage/work_elsewhere.hpp"

namespace tamo::stage {
namespace {

std::vector<platform::RunningApplication> applicationsOf(const StageRoot& root) {
  const StageFiles files(root);
  std::vector<platform::RunningApplication> applications;
  for (const auto& program : runningPrograms(root)) {
    // The identifier is read where the bundle's files are now: a copy in the Trash still is who it was.
    const auto bundle = presentBundle(root, program);
    applications.push_back(
        {.bundleIdentifier = bundle ? platform::bundleIdentifier(files, *bundle) : std::nullopt,
         .bundlePath = program.bundle});
  }
  return applications;
}

}  // namespace

/// A Mac brings its list up to date only when the main loop turns. A list that was read afresh here would hide a wait
/// that blocks the loop.
std::vector<platform::RunningApplication> StageWorkspace::runningApplications() {
  if (turn_ != loop_.turns()) {
    list_ = applicationsOf(root_);
    turn_ = loop_.turns();
  }
  return list_;
}

/// Elsewhere, because a Mac completes this on a queue of its own: the companion has to find back to its main thread.
void StageWorkspace::openApplication(const std::string& path, Completion completion) {
  runElsewhere(threads_, loop_, [root = root_, path, completion = std::move(completion)] {
    completion(openApplicationNow(root, path));
  });
}

}  // namespace tamo::stage

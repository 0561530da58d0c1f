#include "platform/stage/application_opening.hpp"

#include <algorithm>
#include <unistd.h>

#include "platform/bundle_info.hpp"
#include "platform/posix/posix_files.hpp"
#include "platform/stage/background_program.hpp"
#include "platform/stage/running_programs.hpp"
#include "platform/stage/stage_agent_services.hpp"
#include "platform/stage/stage_files.hpp"
#include "values/paths.hpp"

namespace tamo::stage {
namespace {

using platform::Error;

/// What a Mac reports for an application that is missing, or that cannot be started.
constexpr auto cocoaDomain = "NSCocoaErrorDomain";
constexpr int noSuchFile = 260;
constexpr int notLoadable = 3587;

/// For one opening only: an order is taken away with the error that it becomes.
std::optional<Error> orderedError(const StageRoot& root) {
  auto ordered = root.setting("next-open-error");
  if (!ordered) return std::nullopt;
  root.set("next-open-error", std::nullopt);
  return errorFrom(LaunchdAnswer{.status = 1, .output = *std::move(ordered)});
}

/// The stage path of the program that the bundle names; absent when it names none.
std::optional<std::string> programOf(const StageRoot& root, const std::string& bundle) {
  const auto name = platform::bundleText(StageFiles(root), bundle, "CFBundleExecutable");
  // A name with a slash would lead out of the bundle.
  if (!name || name->empty() || name->contains('/')) return std::nullopt;
  return values::joinedPath(bundle, "Contents/MacOS/" + *name);
}

/// By the executable, through whatever link it was started: a Mac brings that process forward and starts no second
/// one. A copy that runs from another place does not count, which the Mac's adapter has to ask for.
bool runsFrom(const StageRoot& root, const std::string& program) {
  const auto executable = root.existing(program);
  const auto running = runningPrograms(root);
  return std::ranges::any_of(running, [&](const auto& one) { return one.executable == executable; });
}

/// Nothing of the opener's environment goes along: on a Mac it is the system that starts an application.
bool start(const StageRoot& root, const std::string& program) {
  return startInBackground({.program = root.host(program),
                            .environment = {"TAMO_STAGE=" + root.directory(), "PATH=/usr/bin:/bin"},
                            .log = root.control("app.log")});
}

}  // namespace

std::optional<Error> openApplicationNow(const StageRoot& root, const std::string& path) {
  if (const auto error = orderedError(root)) return error;
  if (!root.existing(path)) return Error(cocoaDomain, noSuchFile, "The application could not be found.");
  const auto program = programOf(root, path);
  if (!program || (!runsFrom(root, *program) && !start(root, *program)))
    return Error(cocoaDomain, notLoadable, "The application could not be started.");
  // Nothing on a stage depends on what is in front; it is there to be looked at.
  static_cast<void>(platform::posix::writeAtomically(root.control("front"), path + "\n"));
  return std::nullopt;
}

}  // namespace tamo::stage

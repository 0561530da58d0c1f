#include "move/move_to_applications.hpp"

#include <algorithm>
#include <chrono>

#include "guard/live_data_guard.hpp"
#include "platform/bundle_info.hpp"
#include "platform/completion.hpp"
#include "platform/deadline.hpp"
#include "values/paths.hpp"

namespace tamo {

using platform::LogFormat;
using platform::Nothing;
using platform::Task;

namespace {

/// An old copy may ask its user about unsaved work; after this it may stay, and the installed one is opened
/// all the same.
constexpr std::chrono::seconds quitLimit{30};
constexpr std::chrono::milliseconds quitPoll{250};

std::string installedApp() {
  return std::string(AppMove::destination);
}

}  // namespace

MoveToApplications::MoveToApplications(const Needs& needs)
    : needs_(needs),
      bundleCopy_(
          {.runner = ProcessRunner(needs.processes), .files = needs.files, .userFiles = needs.userFiles}) {}

Task<Nothing> MoveToApplications::moveToApplications() {
  platform::requireMain(needs_.mainQueue, "the move to Applications");
  const auto copy = copyToMove();
  if (!copy) {
    refuse();
    co_return Nothing();
  }
  if (!putInPlace(*copy)) co_return Nothing();
  co_await waitForQuit(*copy);
  co_await openInstalled();
  co_return Nothing();
}

/// A helper within a helper is judged by the application around both, but it is the copy around the inner one
/// that would be moved; without an identifier of its own it stays.
std::optional<AppMove::RunningCopy> MoveToApplications::copyToMove() const {
  const auto here = LiveDataGuard::outerApp(needs_.bundles.mainBundlePath());
  if (!AppMove::needed(here, LiveDataGuard::realHome(needs_.user), needs_.files)) return std::nullopt;
  const auto bundleID = platform::bundleIdentifier(needs_.files, here);
  if (!bundleID) return std::nullopt;
  return AppMove::RunningCopy{.path = here, .bundleID = *bundleID};
}

void MoveToApplications::refuse() {
  needs_.log.write({LogFormat::moveRefused, {}});
}

/// Whether the installed copy is where it belongs afterwards. The result is on disk before the wait begins,
/// so that whoever reads it need not wait as well.
bool MoveToApplications::putInPlace(const AppMove::RunningCopy& copy) {
  const auto code = install(copy.path);
  if (code == AppMove::Code::moved) removeOldCopy(copy.path);
  const auto result = AppMove::resultOf(code);
  needs_.log.write({LogFormat::moveResult, {result.code}});
  record(result, copy.bundleID);
  return result.ok;
}

/// The build of what is installed is read only where something is.
AppMove::Plan MoveToApplications::planFor(const std::string& here) const {
  const bool exists = needs_.files.exists(installedApp());
  const auto source = AppMove::build(needs_.files, here);
  const auto installed = exists ? AppMove::build(needs_.files, installedApp()) : std::nullopt;
  return AppMove::plan({.source = source, .installed = installed, .installedExists = exists});
}

/// An older copy that cannot be taken away is not copied over: ditto would mix the two.
std::string_view MoveToApplications::install(const std::string& here) {
  const auto plan = planFor(here);
  if (plan == AppMove::Plan::openInstalled) return AppMove::Code::opened;
  if (plan == AppMove::Plan::replace && !needs_.userFiles.moveToTrash(installedApp())) {
    return AppMove::Code::notWritable;
  }
  return bundleCopy_.copy(here, installedApp());
}

void MoveToApplications::removeOldCopy(const std::string& here) {
  const auto old = AppMove::oldCopy(here, AppMove::originalURL(here, needs_.bundles));
  // An old copy that stays is in nobody's way.
  if (old) static_cast<void>(needs_.userFiles.moveToTrash(*old));
}

/// Failures are ignored on purpose: the move is made by now, and the log has its code. A folder that could
/// not be created may be there all the same, so the writing is tried in any case.
void MoveToApplications::record(const AppMove::Result& result, const std::string& bundleID) {
  const auto file = AppMove::resultURL(LiveDataGuard::realHome(needs_.user), bundleID);
  static_cast<void>(needs_.files.createDirectories(std::string(values::parentPath(file))));
  static_cast<void>(needs_.files.writeAtomically(file, AppMove::encoded(result)));
}

bool MoveToApplications::runs(const AppMove::RunningCopy& copy) {
  const auto running = needs_.workspace.runningApplications();
  return std::any_of(running.begin(), running.end(),
                     [&copy](const auto& application) { return AppMove::isCopy(copy, application); });
}

/// Every look comes from a turn of the main loop of its own, because only then does the list change.
Task<Nothing> MoveToApplications::waitForQuit(AppMove::RunningCopy copy) {
  const auto deadline = platform::deadlineAfter(needs_.clock.wallNow(), quitLimit);
  while (needs_.clock.wallNow() < deadline && runs(copy)) {
    co_await pause();
  }
  co_return Nothing();
}

Task<Nothing> MoveToApplications::pause() {
  const platform::Completion<Nothing> over(needs_.mainQueue);
  needs_.mainQueue.postAfter(quitPoll, [over] { over.deliver(Nothing()); });
  co_await over;
  co_return Nothing();
}

/// Why an opening failed concerns nobody: the installed copy is in place, and its user opens it by hand.
Task<Nothing> MoveToApplications::openInstalled() {
  const platform::Completion<Nothing> opened(needs_.mainQueue);
  needs_.workspace.openApplication(
      installedApp(), [opened](const std::optional<platform::Error>&) { opened.deliver(Nothing()); });
  co_await opened;
  co_return Nothing();
}

}  // namespace tamo

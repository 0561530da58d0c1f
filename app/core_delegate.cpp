#include "app/core_delegate.hpp"

#include <chrono>
#include <utility>

#include "app/data_directory.hpp"
#include "app/request_intake.hpp"
#include "guard/live_data_guard.hpp"
#include "move/app_move.hpp"
#include "values/fatal.hpp"

namespace tamo {
namespace {

/// How long after launch URLs may still change what is requested. On a Mac the URL that started the process
/// can come after launching has finished.
constexpr std::chrono::milliseconds intake{400};

Launchctl::Needs launchctlNeeds(const platform::Platform& platform, const TamoCoreConfig& config) {
  return {.processes = platform.processes,
          .files = platform.files,
          .clock = platform.clock,
          .kernelProcesses = platform.kernelProcesses,
          .user = platform.user,
          .label = std::string(config.label)};
}

MoveToApplications::Needs moveNeeds(const platform::Platform& platform, platform::Logger& log) {
  return {.processes = platform.processes,
          .files = platform.files,
          .userFiles = platform.userFiles,
          .bundles = platform.bundles,
          .user = platform.user,
          .workspace = platform.workspace,
          .clock = platform.clock,
          .mainQueue = platform.mainQueue,
          .log = log};
}

}  // namespace

/// The parts are made in the order of the members, each after those that it uses. The data directory and the
/// print are asked for when they are needed, because the answers change.
CoreDelegate::CoreDelegate(const platform::Platform& platform, const TamoCoreConfig& config,
                           std::vector<std::string> arguments)
    : platform_(platform),
      config_(config),
      arguments_(std::move(arguments)),
      log_(platform.logSystem.logger(std::string(config.coreBundleID), "lifecycle")),
      liveData_(platform.files, platform.bundles, platform.user),
      launchctl_(launchctlNeeds(platform, config)),
      jobLock_({.lockFiles = platform.lockFiles,
                .files = platform.files,
                .clock = platform.clock,
                .label = std::string(config.label)}),
      hardStop_({.kernelProcesses = platform.kernelProcesses,
                 .threads = platform.threads,
                 .files = platform.files,
                 .bundles = platform.bundles,
                 .clock = platform.clock,
                 .mainQueue = platform.mainQueue,
                 .log = *log_,
                 .printedJob = [this] { return printedJob(); },
                 .dataDirectory = [this] { return dataDirectory(platform_.user, config_); }}),
      definition_({.files = platform.files,
                   .bundles = platform.bundles,
                   .launchctl = launchctl_,
                   .log = *log_,
                   .label = std::string(config.label)}),
      registration_(platform.mainQueue, hardStop_),
      agentActions_({.launchctl = launchctl_,
                     .definition = definition_,
                     .registration = registration_,
                     .hardStop = hardStop_,
                     .sockets = platform.localSockets,
                     .dataDirectory = [this] { return dataDirectory(platform_.user, config_); }}),
      move_(moveNeeds(platform, *log_)),
      receipts_({.bundles = platform.bundles,
                 .kernelProcesses = platform.kernelProcesses,
                 .clock = platform.clock,
                 .user = platform.user,
                 .files = platform.files,
                 .log = *log_}) {
  platform::requireMain(platform_.mainQueue, "CoreDelegate");
}

/// The default is settled by the copy that was launched, now: what becomes of the copy within the delay
/// changes nothing.
void CoreDelegate::applicationDidFinishLaunching() {
  platform::requireMain(platform_.mainQueue, "applicationDidFinishLaunching");
  if (auto action = RequestIntake::actionOfArguments(arguments_)) requested_ = std::move(action);
  const bool moves = AppMove::needed(platform_.bundles.mainBundlePath(),
                                     LiveDataGuard::realHome(platform_.user), platform_.files);
  std::string defaultAction(moves ? AppMove::operation : "register");
  platform_.mainQueue.postAfter(intake, [this, defaultAction = std::move(defaultAction)] {
    platform::requireMain(platform_.mainQueue, "the start of the action");
    performing_.emplace(performRequested(defaultAction));
    performing_->start();
  });
}

/// The last URL wins, and wins over the command line too when it comes after the launch: it was asked for
/// last.
void CoreDelegate::application(const std::vector<std::string>& open) {
  platform::requireMain(platform_.mainQueue, "application(open:)");
  for (const auto& url : open) {
    if (auto action = RequestIntake::actionOfUrl(url, config_.urlScheme)) requested_ = std::move(action);
  }
}

/// perform() itself raises nothing; what comes out of it all the same, a failed allocation say, must not
/// leave a process that waits for ever.
platform::Task<platform::Nothing> CoreDelegate::performRequested(std::string defaultAction) {
  try {
    co_await perform(requested_.value_or(std::move(defaultAction)));
  } catch (const std::exception& failure) {
    values::fatal(failure.what());
  }
  co_return platform::Nothing();
}

/// Blocks of newer systems would hide the pid from whoever counts blocks, so they are left out here. The exit
/// status plays no part: the kernel says whether there is such a process.
std::optional<std::string> CoreDelegate::printedJob() {
  auto printed = launchctl_.printJob();
  if (!printed || !printed->text) return std::nullopt;
  return withoutQuotedBlocks(*std::move(printed->text));
}

}  // namespace tamo

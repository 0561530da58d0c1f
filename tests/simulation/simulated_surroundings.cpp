#include "simulation/simulated_surroundings.hpp"

#include <utility>

#include "platform/log_text.hpp"
#include "simulation/job_texts.hpp"
#include "simulation/referee.hpp"
#include "simulation/simulated_files.hpp"

namespace tamo::simulation {
namespace {

using platform::Error;
using platform::LogFormat;
using std::chrono::milliseconds;

std::optional<std::int64_t> toldInstead(Way way) {
  if (way == Way::Zero) return 0;
  if (way == Way::One) return 1;
  if (way == Way::Two) return 2;
  return way == Way::Three ? std::optional(std::int64_t{3}) : std::nullopt;
}

/// The agent as service management shows it to one companion.
class Agent final : public platform::AgentService {
 public:
  explicit Agent(Companion& companion) : companion_(companion) {}

  [[nodiscard]] std::int64_t status() override {
    static_cast<void>(companion_.enter(Call::agentStatus));
    auto told = toldInstead(companion_.way()).value_or(companion_.world.job.status);
    companion_.record.statuses.push_back(told);
    companion_.note("is told status ", told);
    const auto planted = companion_.world.planted;
    if (planted == Plant::StatusTouches && companion_.record.requested == "status")
      Referee::acts(companion_, "register");
    if (planted == Plant::Unrepeatable) told += runs % 2;
    return told;
  }

  void registerAgent() override {
    auto& record = companion_.record;
    const bool fails = companion_.enter(Call::registerAgent);
    Referee::acts(companion_, "register");
    ++record.registrations;
    const auto* list = companion_.world.files.read(companion_.bundlePath() + std::string(Places::agentList));
    const auto definition = list == nullptr ? std::nullopt : definitionOf(*list);
    if (fails) raise(Error("SMAppServiceErrorDomain", 1, "Operation not permitted"));
    if (!definition) raise(Error("SMAppServiceErrorDomain", 8, "There is no such list: \"agent\\core\""));
    companion_.note("registers the agent");
    companion_.world.job.registerAgent(*definition);
  }

  void unregisterAgent(Completion completion) override {
    auto& record = companion_.record;
    if (companion_.world.planted == Plant::LostDeed) return completion(std::nullopt);
    const bool fails = companion_.enter(Call::unregisterAgent);
    const bool afterGrace = companion_.way() == Way::Late;
    Referee::acts(companion_, "unregister");
    Referee::asksToStop(companion_);
    ++record.unregistrations;
    companion_.note("unregisters the agent");
    const auto asked = companion_.world.timeline.now();
    Completion answers = [&companion = companion_, completion = std::move(completion),
                          asked](std::optional<Error> error) { answer(companion, completion, asked, error); };
    auto& world = companion_.world;
    const auto delay = world.dice.between(Time(0), milliseconds(30));
    if (fails) {
      const auto late = afterGrace               ? milliseconds(2100)
                        : world.dice.chance(300) ? world.dice.between(milliseconds(1800), milliseconds(2200))
                                                 : delay;
      world.timeline.after(late,
                           [answers] { answers(Error("SMAppServiceErrorDomain", 2, "Internal failure")); });
    } else {
      world.timeline.after(delay, [&world, answers] { world.job.unregisterAgent(answers); });
    }
  }

  /// Counts the runs of the process, for the plant that must be seen not to repeat.
  static inline std::int64_t runs = 0;

 private:
  [[noreturn]] void raise(const Error& error) {
    companion_.record.lastError = error;
    companion_.note("is refused a registration");
    const bool withheld = companion_.world.job.status == 2;
    if (withheld && companion_.world.planted == Plant::SettingsAfterError) Referee::opensSettings(companion_);
    throw Error(error);
  }

  static void answer(Companion& companion, const Completion& completion, Time asked,
                     const std::optional<Error>& error) {
    if (companion.ended()) return;
    const auto planted = companion.world.planted;
    auto& record = companion.record;
    record.waitedForAnswers += companion.world.timeline.now() - asked;
    companion.note("is told that the unregistering ", error ? "failed" : "is done");
    if (error) {
      record.lastError = error;
      record.unregisterFailed = true;
      Referee::stopFailed(companion);
    }
    if (planted == Plant::LostCompletion) return;
    completion(planted == Plant::RegisterAfterFailure ? std::nullopt : error);
  }

  Companion& companion_;
};

class Lines final : public platform::Logger {
 public:
  explicit Lines(Companion& companion) : companion_(companion) {}

  void write(const platform::LogLine& line) override {
    static_cast<void>(companion_.enter(Call::log));
    auto& world = companion_.world;
    const bool outcome = line.format == LogFormat::outcome;
    auto written = line;
    if (outcome && world.planted == Plant::WrongStatusInLine) written.arguments[1] = std::int64_t{7};
    if (outcome && world.planted == Plant::LostLine) return;
    if (line.format == LogFormat::hardStop && world.planted == Plant::WrongNote)
      written.arguments[1] = "exited";
    if (world.trace.kept()) companion_.note("logs ", platform::shownText(written));
    Referee::logs(companion_, written);
    if (outcome && world.planted == Plant::DoubledLine) Referee::logs(companion_, written);
    if (outcome && world.planted == Plant::EarlyUnlock && companion_.record.lockHeld) dropLock();
  }

 private:
  void dropLock() {
    Referee::letsLockGo(companion_);
    companion_.world.lockHolder = nullptr;
  }

  Companion& companion_;
};

}  // namespace

void SimulatedApplication::becomeAccessory() {
  static_cast<void>(companion_.enter(Call::becomeAccessory));
}

void SimulatedApplication::terminate() {
  static_cast<void>(companion_.enter(Call::terminate));
  const auto planted = companion_.world.planted;
  if (planted == Plant::NoTerminate) return;
  if (planted == Plant::SecondTerminate && !companion_.plan.exitsInTerminate) companion_.terminate();
  companion_.terminate();
}

std::unique_ptr<platform::AgentService> SimulatedAgentServices::agent(const std::string& /*plistName*/) {
  const auto planted = companion_.world.planted;
  SimulatedFiles files(companion_);
  if (planted == Plant::StrayRead) static_cast<void>(files.readWhole(companion_.dataDirectory() + "core.db"));
  if (planted == Plant::GuardAskedAgain)
    static_cast<void>(files.readWhole(companion_.plan.copy + "/Contents/Info.plist"));
  ++Agent::runs;
  return std::make_unique<Agent>(companion_);
}

void SimulatedAgentServices::openSystemSettingsLoginItems() {
  static_cast<void>(companion_.enter(Call::openLoginItems));
  if (companion_.world.planted == Plant::SettingsForgotten) return;
  Referee::opensSettings(companion_);
}

void SimulatedWorkspace::turn() {
  known_ = companion_.world.applications;
}

std::vector<platform::RunningApplication> SimulatedWorkspace::runningApplications() {
  companion_.record.oldCopyRuns = false;
  if (companion_.enter(Call::runningApplications)) return {};
  std::vector<platform::RunningApplication> running;
  for (const auto& app : known_) {
    running.push_back({.bundleIdentifier = app.bundleID, .bundlePath = app.path});
    const bool isOld = app.bundleID == Places::releaseID && app.path == companion_.plan.copy;
    companion_.record.oldCopyRuns = companion_.record.oldCopyRuns || isOld;
  }
  return running;
}

void SimulatedWorkspace::openApplication(const std::string& path, Completion completion) {
  auto& world = companion_.world;
  const bool fails = companion_.enter(Call::openApplication);
  companion_.note("opens ", path);
  Referee::opensInstalled(companion_, path);
  const auto delay = world.dice.between(milliseconds(1), milliseconds(500));
  companion_.record.waitedForAnswers += delay;
  if (world.planted == Plant::LostCompletion) return;
  world.timeline.after(delay, [completion = std::move(completion), fails] {
    completion(fails ? std::optional(Error("NSCocoaErrorDomain", 256, "It couldn't be opened"))
                     : std::nullopt);
  });
}

std::unique_ptr<platform::Logger> SimulatedLogSystem::logger(const std::string& /*subsystem*/,
                                                             const std::string& /*category*/) {
  return std::make_unique<Lines>(companion_);
}

}  // namespace tamo::simulation

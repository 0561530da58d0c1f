#include "simulation/companion.hpp"

#include <algorithm>
#include <exception>
#include <utility>

#include "app/core_main.hpp"
#include "simulation/director.hpp"
#include "simulation/referee.hpp"
#include "simulation/simulated_platform.hpp"

namespace tamo::simulation {
namespace {

TamoCoreConfig configOf(const CompanionPlan& plan) {
  TamoCoreConfig config;
  config.writesReceipts = plan.writesReceipts;
  if (plan.proofHome) config.proofHome = Places::proofHome;
  return config;
}

}  // namespace

Companion::Companion(World& around, CompanionPlan how)
    : world(around),
      plan(std::move(how)),
      config(configOf(plan)),
      platform_(std::make_unique<SimulatedPlatform>(*this)) {}

Companion::~Companion() = default;

void Companion::launch() {
  const auto core = world.job.corePid();
  const auto* together = core && world.dice.chance(60) ? world.processes.find(*core) : nullptr;
  const auto group = together == nullptr ? std::nullopt : std::optional(together->group);
  const auto& process = world.processes.spawn(ProcessKind::Companion, world.clocks.wallNow(), group);
  pid_ = process.pid;
  startMicros_ = process.startMicros;
  launched_ = true;
  record.launchedAt = world.timeline.now();
  note("is launched from ", plan.copy, " as ", pid_);
  for (const auto& delivery : plan.urls) {
    world.timeline.after(delivery.after,
                         [this, &delivery] { post([this, &delivery] { deliver(delivery); }); });
  }
  if (plan.diesAfter) world.timeline.after(*plan.diesAfter, [this] { die(); });
  main_ = &world.timeline.start([this] { mainThread(); });
}

void Companion::mainThread() {
  try {
    CoreMain::main(platform_->platform(), config, plan.arguments);
  } catch (const Gone&) {
    // The process has ended within a call; its stack is unwound by now.
  }
  record.leftLocked = record.lockHeld;
  if (!dead_) leave();
  main_ = nullptr;
  if (!killed_) Referee::ended(*this);
}

void Companion::die() {
  if (dead_ || !launched_) return;
  note("is killed");
  killed_ = true;
  world.copiesDisturbed = world.copiesDisturbed || record.copies > 0;
  leave();
  if (world.planted == Plant::ScarredData) world.files.write(dataDirectory() + "core.db.revert.pending", "");
  if (world.director != nullptr) world.director->died(*this);
}

void Companion::leave() {
  dead_ = true;
  world.lastEnd = world.timeline.now();
  world.processes.remove(pid_);
  const bool stale = killed_ && world.planted == Plant::StaleLock;
  if (world.lockHolder == this && !stale) world.lockHolder = nullptr;
  std::erase_if(world.lockDescriptors, [this](const auto& entry) { return entry.second == this; });
  record.lockHeld = false;
  for (auto* strand : watchers_)
    world.timeline.wake(*strand);
  if (main_ != nullptr && !onMain()) world.timeline.wake(*main_);
}

bool Companion::entered(Call call, Way way) {
  way_ = way;
  if (way == Way::None) return false;
  record.struck.set(static_cast<std::size_t>(call));
  note(nameOf(call), " fails", way == Way::Fails ? "" : ": ", way == Way::Fails ? "" : nameOf(way));
  return true;
}

bool Companion::enterQuietly(Call call, std::string_view subject) {
  way_ = Way::Fails;
  if (dead_ || std::uncaught_exceptions() > 0) return true;
  if (world.director != nullptr) {
    const auto way = world.director->called(*this, call, subject);
    return dead_ || entered(call, way);
  }
  if (++calls_ == plan.diesAtCall.value_or(0)) {
    die();
    return true;
  }
  if (++world.calls == world.sleepsAtCall) world.sleepMachine(world.sleepsFor);
  const auto slow = world.faults.slowness();
  if (slow > Time(0)) {
    note(nameOf(call), " takes its time");
    record.slow += slow;
    world.timeline.sleep(slow);
    if (dead_) return true;
  }
  const bool fails = world.faults.strikes(call);
  return entered(call, fails ? Way::Fails : Way::None);
}

bool Companion::enter(Call call, std::string_view subject) {
  const bool fails = enterQuietly(call, subject);
  stillThere();
  return fails;
}

void Companion::stillThere() const {
  if (dead_ && std::uncaught_exceptions() == 0) throw Gone();
}

void Companion::post(std::function<void()> work) {
  if (dead_) return;
  queue_.push_back(std::move(work));
  if (waiting_) world.timeline.wake(*main_);
}

/// The first delayed work of a companion is the start of its action.
void Companion::postAfter(Time delay, std::function<void()> work) {
  if (!std::exchange(dispatchPosted_, true)) {
    expect(delay == std::chrono::milliseconds(400), Invariant::Requested, "the intake is not 0.4 s long");
    work = [this, action = std::move(work)] {
      record.dispatched = true;
      record.looks = {};
      action();
    };
  }
  world.timeline.after(delay, [this, work = std::move(work)] { post(work); });
}

void Companion::run(platform::ApplicationDelegate& delegate) {
  delegate_ = &delegate;
  post([this] { finishLaunching(*delegate_); });
  while (!dead_ && !terminating_) {
    if (queue_.empty()) {
      waiting_ = true;
      world.timeline.park();
      waiting_ = false;
      continue;
    }
    const auto work = std::move(queue_.front());
    queue_.pop_front();
    platform_->turn();
    work();
  }
  queue_.clear();
}

void Companion::finishLaunching(platform::ApplicationDelegate& delegate) {
  if (plan.argumentsMean) record.requested = plan.argumentsMean;
  record.launched = true;
  delegate.applicationDidFinishLaunching();
  record.otherwise = Referee::needsMove(*this) ? "move-to-applications" : "register";
}

void Companion::deliver(const UrlDelivery& delivery) {
  if (delivery.means && !record.dispatched) record.requested = delivery.means;
  note("is handed ", delivery.url);
  if (world.planted == Plant::LostUrl) return;
  delegate_->application({delivery.url});
}

void Companion::terminate() {
  ++record.terminations;
  note("asks to terminate");
  if (plan.exitsInTerminate) {
    leave();
    throw Gone();
  }
  terminating_ = true;
}

void Companion::detach(std::function<void()> work) {
  Referee::watching(*this);
  const auto stop = record.stops.size() - 1;
  watchers_.push_back(&world.timeline.start([this, stop, work = std::move(work)] { watch(stop, work); }));
}

void Companion::watch(std::size_t stop, const std::function<void()>& work) {
  try {
    Referee::watchBegins(*this, stop);
    work();
    Referee::watchEnded(*this, stop);
  } catch (const Gone&) {
    // Unwound with the process.
  }
  std::erase(watchers_, world.timeline.current());
}

std::int32_t Companion::group() const {
  const auto* process = world.processes.find(pid_, startMicros_);
  return process == nullptr ? pid_ : process->group;
}

std::string Companion::bundlePath() const {
  return plan.copy + std::string(Places::helper);
}

std::string Companion::dataDirectory() const {
  return std::string(plan.proofHome ? Places::proofHome : Places::home) + std::string(Places::dataInHome);
}

std::string Companion::plantedPlace(const std::string& path) const {
  const auto data = dataDirectory();
  const bool moved = world.planted == Plant::DataInRealHome && plan.proofHome && path.starts_with(data);
  if (!moved) return path;
  return std::string(Places::home) + std::string(Places::dataInHome) + path.substr(data.size());
}

void Companion::expect(bool holds, Invariant invariant, std::string_view detail) const {
  if (holds) return;
  world.verdict.broken({invariant, world.timeline.now(), plan.name, std::string(detail)});
}

}  // namespace tamo::simulation

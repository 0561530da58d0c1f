#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/tamo_core_config.hpp"
#include "platform/application.hpp"
#include "simulation/record.hpp"
#include "simulation/world.hpp"

namespace tamo::simulation {

class SimulatedPlatform;

/// Raised by a platform call of a process that is no more; unwinds its stacks.
struct Gone {};

struct UrlDelivery {
  Time after;
  std::string url;
  /// The action that it asks for; absent for one that asks for none.
  std::optional<std::string> means;
};

/// How one companion is started, and what becomes of it by the will of others.
struct CompanionPlan {
  std::string name;
  Time launch{0};
  /// The copy of the application that it lies in.
  std::string copy;
  std::vector<std::string> arguments;
  /// The action that the arguments ask for; absent when they ask for none.
  std::optional<std::string> argumentsMean;
  /// Counted from its launch.
  std::vector<UrlDelivery> urls;
  bool writesReceipts = false;
  bool proofHome = false;
  /// Whether the terminate request ends the process at once.
  bool exitsInTerminate = false;
  /// Killed after that time, or at that call to the platform.
  std::optional<Time> diesAfter;
  std::optional<std::uint64_t> diesAtCall;
};

/// One companion: a process of the played Mac whose threads are strands, with the real CoreMain on them. It
/// can be killed at any call to the platform, and its stacks are then unwound without further effect.
class Companion {
 public:
  Companion(World& world, CompanionPlan plan);
  Companion(const Companion&) = delete;
  Companion& operator=(const Companion&) = delete;
  ~Companion();

  /// Starts the process. An event, or a call from outside.
  void launch();
  /// SIGKILL from anybody.
  void die();
  /// The end of the process, by whatever cause: its lock is dropped, its strands are unwound.
  void leave();

  /// Entry of every call to the platform: may take time, may be where the process ends. Gives whether the
  /// call is to fail. Raises Gone for a process that has ended, except while an exception is on its way: the
  /// call then fails.
  [[nodiscard]] bool enter(Call call, std::string_view subject = {});
  /// The same for calls that destructors make, which must not raise.
  [[nodiscard]] bool enterQuietly(Call call, std::string_view subject = {});
  /// In which way the call that was just entered fails.
  [[nodiscard]] Way way() const { return way_; }
  /// Raises Gone when the process ended while it waited.
  void stillThere() const;

  // The main thread.
  [[nodiscard]] bool onMain() const { return world.timeline.current() == main_; }
  void post(std::function<void()> work);
  void postAfter(Time delay, std::function<void()> work);
  void run(platform::ApplicationDelegate& delegate);
  void terminate();

  // Other threads.
  void detach(std::function<void()> work);

  [[nodiscard]] bool ended() const { return launched_ && dead_; }
  [[nodiscard]] bool launched() const { return launched_; }
  [[nodiscard]] bool wasKilled() const { return killed_; }
  [[nodiscard]] std::int32_t pid() const { return pid_; }
  [[nodiscard]] std::int32_t group() const;
  [[nodiscard]] std::string bundlePath() const;
  [[nodiscard]] std::string dataDirectory() const;
  /// Where it looks for a path that it asks for: there, but for a planted fault that has the Core's data in the home of a
  /// user although the configuration has another.
  [[nodiscard]] std::string plantedPlace(const std::string& path) const;
  /// Notes a broken invariant unless `holds`.
  void expect(bool holds, Invariant invariant, std::string_view detail) const;
  template <class... Parts>
  void note(const Parts&... parts) const {
    world.trace.note(world.timeline.now(), plan.name, parts...);
  }

  World& world;
  const CompanionPlan plan;
  const TamoCoreConfig config;
  Record record;

 private:
  void mainThread();
  bool entered(Call call, Way way);
  void watch(std::size_t stop, const std::function<void()>& work);
  void finishLaunching(platform::ApplicationDelegate& delegate);
  void deliver(const UrlDelivery& delivery);

  std::unique_ptr<SimulatedPlatform> platform_;
  platform::ApplicationDelegate* delegate_ = nullptr;
  std::int32_t pid_ = 0;
  std::uint64_t startMicros_ = 0;
  Strand* main_ = nullptr;
  std::vector<Strand*> watchers_;
  std::deque<std::function<void()>> queue_;
  bool waiting_ = false;
  bool dispatchPosted_ = false;
  bool terminating_ = false;
  bool launched_ = false;
  bool dead_ = false;
  bool killed_ = false;
  std::uint64_t calls_ = 0;
  Way way_ = Way::None;
};

}  // namespace tamo::simulation

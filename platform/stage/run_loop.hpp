#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "platform/application.hpp"
#include "platform/main_queue.hpp"
#include "platform/posix/descriptor.hpp"
#include "platform/stage/stage_root.hpp"
#include "platform/stage/url_inbox.hpp"

namespace tamo::stage {

/// The main loop of a companion on a stage: its main queue and its application object in one, because both
/// are one loop. The thread that makes it is the main thread.
///
/// The first turn hands the delegate the URLs of the environment variable TAMO_STAGE_OPEN (one a line) and
/// then tells it that launching has finished. Each later turn takes the URLs that have arrived at the inbox
/// and one piece of posted work.
///
/// Delays count on CLOCK_MONOTONIC, which stands still while the machine sleeps, as the delays of a Mac's
/// main queue do: a companion that is put to sleep right after its start still gives its launcher the whole
/// delay to send a URL.
///
/// The setting "terminate" says what the terminate request does: "exits" (so it is on a Mac, and the default)
/// ends the process inside the call with status 0, "returns" ends the loop after the current turn and drops
/// what is still queued.
///
/// Known differences from a Mac: there is no Dock and no menu bar, so becoming an accessory has no effect;
/// any URL is delivered, whatever its scheme, and only to a process that was chosen by pid; delays have no
/// leeway; nothing but the terminate request ends the loop.
class RunLoop final : public platform::MainQueue, public platform::Application {
 public:
  explicit RunLoop(const StageRoot& root);

  [[nodiscard]] bool isMain() const override { return std::this_thread::get_id() == main_; }
  void post(std::function<void()> work) override;
  void postAfter(std::chrono::nanoseconds delay, std::function<void()> work) override;

  void becomeAccessory() override {}
  void setDelegate(platform::ApplicationDelegate& delegate) override { delegate_ = &delegate; }
  /// Once. Stops the process (fatal) without a delegate. Returns after a terminate request that returns.
  void run() override;
  /// Stops the process (fatal) while the loop does not run.
  void terminate() override;

  /// How many turns have begun. Main thread.
  [[nodiscard]] std::uint64_t turns() const { return turns_; }

 private:
  using Moment = std::chrono::steady_clock::time_point;

  void finishLaunching();
  void turn();
  void awaitEvents();
  [[nodiscard]] std::optional<std::chrono::nanoseconds> longestWait();
  void deliverURLs();
  void open(const std::vector<std::string>& urls);
  void queueDueWork();
  void runNext();

  const StageRoot root_;
  const std::thread::id main_ = std::this_thread::get_id();
  platform::Descriptor wake_;
  std::unique_ptr<UrlInbox> inbox_;
  platform::ApplicationDelegate* delegate_ = nullptr;
  bool running_ = false;
  /// Whether the last wait found something at the inbox.
  bool urlsHaveCome_ = false;
  std::uint64_t turns_ = 0;

  /// Guards posted_, which every thread may add to. The rest belongs to the main thread.
  std::mutex lock_;
  std::deque<std::function<void()>> posted_;
  std::multimap<Moment, std::function<void()>> delayed_;
};

}  // namespace tamo::stage

#include "platform/stage/run_loop.hpp"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <poll.h>
#include <string>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "values/fatal.hpp"

namespace tamo::stage {
namespace {

using namespace std::chrono_literals;

timespec timespecOf(std::chrono::nanoseconds duration) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(duration);
  timespec result{};
  result.tv_sec = static_cast<time_t>(seconds.count());
  result.tv_nsec = static_cast<long>((duration - seconds).count());
  return result;
}

/// Taken away from the environment, so that no tool or companion started from here opens them again.
std::vector<std::string> urlsOfTheStart() {
  const char* lines = std::getenv("TAMO_STAGE_OPEN");
  if (lines == nullptr) return {};
  auto urls = urlsIn(lines);
  ::unsetenv("TAMO_STAGE_OPEN");
  return urls;
}

}  // namespace

RunLoop::RunLoop(const StageRoot& root) : root_(root), wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (!wake_) values::fatal("the main loop gets no event descriptor");
}

void RunLoop::post(std::function<void()> work) {
  const std::lock_guard hold(lock_);
  posted_.push_back(std::move(work));
  // A full counter refuses to grow, but then the loop is awake already.
  const std::uint64_t one = 1;
  static_cast<void>(::write(wake_.get(), &one, sizeof one));
}

/// Counted on a clock that stops while the machine sleeps, as a Mac's does.
void RunLoop::postAfter(std::chrono::nanoseconds delay, std::function<void()> work) {
  platform::requireMain(*this, "delayed work");
  delayed_.emplace(std::chrono::steady_clock::now() + delay, std::move(work));
}

/// The inbox is there before the delegate is told anything: who learns that a companion has launched may send it a
/// URL.
void RunLoop::run() {
  platform::requireMain(*this, "the main loop");
  if (delegate_ == nullptr) values::fatal("an application without a delegate was run");
  inbox_ = std::make_unique<UrlInbox>(root_);
  running_ = true;
  finishLaunching();
  while (running_)
    turn();
  inbox_.reset();
}

/// The inbox goes first, because an exit from within runs no destructor of what lies on the stack. An exit within the
/// call is what a Mac does. What stands behind the request in the companion then never runs, and the kernel drops the
/// lock. A request that returns is played as well, so that the product counts on neither.
void RunLoop::terminate() {
  platform::requireMain(*this, "the terminate request");
  if (!running_) values::fatal("there is no application to terminate");
  running_ = false;
  if (root_.setting("terminate", "exits") == "returns") return;
  inbox_.reset();
  std::exit(0);
}

/// On a Mac the first URL usually comes before launching has finished, so these do. One of them may have ended it all.
void RunLoop::finishLaunching() {
  open(urlsOfTheStart());
  if (running_) delegate_->applicationDidFinishLaunching();
}

/// One piece of work a turn: what is posted meanwhile, and every URL, comes before the next.
void RunLoop::turn() {
  awaitEvents();
  ++turns_;
  deliverURLs();
  queueDueWork();
  runNext();
}

void RunLoop::awaitEvents() {
  std::vector<pollfd> sources{{.fd = wake_.get(), .events = POLLIN, .revents = 0}};
  for (const int descriptor : inbox_->descriptors())
    sources.push_back({.fd = descriptor, .events = POLLIN, .revents = 0});
  const auto longest = longestWait();
  const auto limit = timespecOf(longest.value_or(0ns));
  // An interrupted wait is only a turn with nothing to do.
  static_cast<void>(::ppoll(sources.data(), sources.size(), longest ? &limit : nullptr, nullptr));
  // Emptied before the queue is looked at, so that what is posted from here on wakes the next wait.
  const auto hasCome = [](const pollfd& source) { return source.revents != 0; };
  std::uint64_t wakings = 0;
  if (hasCome(sources.front())) static_cast<void>(::read(wake_.get(), &wakings, sizeof wakings));
  urlsHaveCome_ = std::any_of(sources.begin() + 1, sources.end(), hasCome);
}

/// A turn runs one piece of work, so some may be left that nobody announces again: then there is nothing to wait for.
std::optional<std::chrono::nanoseconds> RunLoop::longestWait() {
  {
    const std::lock_guard hold(lock_);
    if (!posted_.empty()) return 0ns;
  }
  if (delayed_.empty()) return std::nullopt;
  const std::chrono::nanoseconds left = delayed_.begin()->first - std::chrono::steady_clock::now();
  return std::max(left, 0ns);
}

void RunLoop::deliverURLs() {
  if (!urlsHaveCome_) return;
  for (const auto& urls : inbox_->receive())
    open(urls);
}

/// Nothing is delivered after the terminate request, whatever had arrived by then.
void RunLoop::open(const std::vector<std::string>& urls) {
  if (running_ && !urls.empty()) delegate_->application(urls);
}

/// Work that falls due is queued behind what was posted before, so it overtakes nothing.
void RunLoop::queueDueWork() {
  const auto now = std::chrono::steady_clock::now();
  const std::lock_guard hold(lock_);
  while (!delayed_.empty() && delayed_.begin()->first <= now)
    posted_.push_back(std::move(delayed_.extract(delayed_.begin()).mapped()));
}

/// Run without the lock, because work posts more work.
void RunLoop::runNext() {
  std::function<void()> work;
  {
    const std::lock_guard hold(lock_);
    if (posted_.empty() || !running_) return;
    work = std::move(posted_.front());
    posted_.pop_front();
  }
  work();
}

}  // namespace tamo::stage

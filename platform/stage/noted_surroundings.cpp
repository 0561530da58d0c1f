#include "platform/stage/noted_surroundings.hpp"

#include <utility>

#include "platform/log_text.hpp"

namespace tamo::stage {
namespace {

using platform::LogLine;

/// The text as a log shows it to strangers. The journal escapes it itself.
std::string publicText(const LogLine& line) {
  std::string text;
  for (const auto& piece : platform::pieces(line))
    text += piece.part == platform::LogPart::Private ? "<private>" : piece.text;
  return text;
}

class NotedLogger final : public platform::Logger {
 public:
  NotedLogger(std::unique_ptr<platform::Logger> logger, const Journal& journal)
      : logger_(std::move(logger)), journal_(journal) {}

  void write(const LogLine& line) override {
    // The line comes first: it is what counts, and the journal only tells of it.
    logger_->write(line);
    const bool isError = platform::levelOf(line.format) == platform::LogLevel::Error;
    journal_.note("log", {isError ? "error" : "default", publicText(line)});
  }

 private:
  std::unique_ptr<platform::Logger> logger_;
  const Journal& journal_;
};

}  // namespace

void NotedMainQueue::postAfter(std::chrono::nanoseconds delay, std::function<void()> work) {
  const auto wait = std::chrono::duration_cast<std::chrono::microseconds>(delay);
  journal_.note("waits", {std::to_string(wait.count())});
  // By reference, because delayed work runs only while the host is there.
  queue_.postAfter(delay, [&journal = journal_, work = std::move(work)] {
    journal.note("goes-on");
    work();
  });
}

/// This steps in between, so that URLs are noted before the companion is told of them.
void NotedApplication::setDelegate(platform::ApplicationDelegate& delegate) {
  delegate_ = &delegate;
  application_.setDelegate(*this);
}

/// Noted first: the request normally ends the process.
void NotedApplication::terminate() {
  journal_.note("terminates");
  application_.terminate();
}

void NotedApplication::application(const std::vector<std::string>& open) {
  journal_.note("url", open);
  delegate_->application(open);
}

/// A write that failed has left nothing that could be drawn, and so has an item that did not go to the Trash.
bool NotedFiles::writeAtomically(const std::string& path, std::string_view bytes) {
  const bool written = files_.writeAtomically(path, bytes);
  if (written) journal_.note("writes", {path});
  return written;
}

bool NotedUserFiles::moveToTrash(const std::string& path) {
  const bool moved = files_.moveToTrash(path);
  if (moved) journal_.note("trashes", {path});
  return moved;
}

void NotedWorkspace::openApplication(const std::string& path, Completion completion) {
  journal_.note("opens", {path});
  // With a journal of its own: the completion comes on another thread, and may come when this object is gone.
  workspace_.openApplication(path,
                             [journal = journal_, completion = std::move(completion)](const auto& error) {
                               journal.note("opened", {error ? "no" : "yes"});
                               completion(error);
                             });
}

std::unique_ptr<platform::Logger> NotedLog::logger(const std::string& subsystem,
                                                   const std::string& category) {
  return std::make_unique<NotedLogger>(log_.logger(subsystem, category), journal_);
}

}  // namespace tamo::stage

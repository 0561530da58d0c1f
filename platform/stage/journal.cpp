#include "platform/stage/journal.hpp"

#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

#include "platform/stage/stage_log.hpp"
#include "values/escaped_text.hpp"

namespace tamo::stage {
namespace {

/// Enough for any log line and any path that is drawn; a script that is an argument has thousands.
constexpr std::size_t longestText = 600;

std::int64_t monotonicMicroseconds() {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  return std::int64_t{now.tv_sec} * 1'000'000 + now.tv_nsec / 1000;
}

/// At a border between characters, never inside one.
std::string_view shortened(std::string_view text) {
  auto end = longestText;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
    --end;
  return text.substr(0, end);
}

}  // namespace

Journal::Journal(const StageRoot& root) : pid_(::getpid()) {
  const int before = errno;
  file_ = std::make_shared<const platform::Descriptor>(
      ::open(root.control("journal").c_str(), O_WRONLY | O_APPEND | O_CLOEXEC));
  errno = before;
}

/// The file is never made, so that who wants no journal only has to remove it. Notes are taken between a call and the
/// look at its error, which they must not change.
void Journal::note(std::string_view word, const std::vector<std::string>& texts) const {
  const int before = errno;
  const auto line = journalLine(monotonicMicroseconds(), pid_, word, texts);
  // One write to the end, so that the lines of several processes stay whole.
  if (*file_) static_cast<void>(::write(file_->get(), line.data(), line.size()));
  errno = before;
}

std::string journalLine(std::int64_t microseconds, std::int32_t pid, std::string_view word,
                        const std::vector<std::string>& texts) {
  auto line = std::to_string(microseconds) + "\t" + std::to_string(pid) + "\t" + std::string(word);
  for (const auto& text : texts)
    line += "\t" + journalText(text);
  return line + "\n";
}

std::string journalText(std::string_view text) {
  if (text.size() <= longestText) return values::escaped(text);
  return values::escaped(shortened(text)) + "…";
}

std::string textFromJournal(std::string_view text) {
  return values::unescaped(text);
}

}  // namespace tamo::stage

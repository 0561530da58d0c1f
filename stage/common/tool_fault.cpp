#include "stage/common/tool_fault.hpp"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

#include "platform/posix/byte_stream.hpp"
#include "platform/posix/posix_files.hpp"
#include "stage/common/stage_presence.hpp"
#include "values/text.hpp"

namespace tamo::stage {
namespace {

std::string_view takeWord(std::string_view& rest) {
  const auto end = std::min(rest.find(' '), rest.size());
  const auto word = rest.substr(0, end);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return word;
}

/// A number at the end is the status. A file whose own name ends in one is named with the status behind it.
std::optional<Lie> lieOf(std::string_view rest) {
  if (rest.empty()) return std::nullopt;
  const auto space = rest.rfind(' ');
  const auto status =
      space == std::string_view::npos ? std::nullopt : values::decimalInt32(rest.substr(space + 1));
  if (!status) return Lie{.file = std::string(rest)};
  return Lie{.file = std::string(rest.substr(0, space)), .status = *status};
}

template <class Line>
void eachLine(std::string_view lines, Line line) {
  std::optional<std::string_view> rest = lines;
  while (rest)
    line(values::takeLine(rest));
}

template <class... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};

std::optional<ToolFault> orderedFault(const StageRoot& root, const std::string& tool,
                                      const std::string& verb) {
  return toolFaultFor(root.setting("tool-" + tool, ""), verb);
}

void hang(const StageRoot& root, const Hang& fault) {
  // The companion gives a tool up with SIGTERM and sends nothing stronger, so this one stays until its stage goes.
  if (fault.hard) ::signal(SIGTERM, SIG_IGN);
  const StagePresence presence(root.directory());
  while (presence.isThere())
    std::this_thread::sleep_for(std::chrono::seconds(1));
}

/// False when the stage is gone, and with it the work. A rehearsal lets the tool go on by the setting alone, so the
/// setting is what is watched, and often.
bool pause(const StageRoot& root, const std::string& tool, const std::string& verb) {
  const StagePresence presence(root.directory());
  for (;;) {
    const auto fault = orderedFault(root, tool, verb);
    // After the reading: a stage that has gone orders nothing either.
    const bool isThere = presence.isThere();
    if (!isThere || !fault || !std::holds_alternative<Pause>(*fault)) return isThere;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

/// The child outlives the tool, and whoever reads to the end of its outputs waits for the child. It exits without the
/// library's own end, which would write once more what both had still to write.
void hold(std::chrono::milliseconds time) {
  if (::fork() != 0) return;
  std::this_thread::sleep_for(time);
  ::_exit(0);
}

/// In portions, so that the flood takes no memory of its own.
void flood(int descriptor, std::int32_t bytes) {
  std::string portion;
  while (portion.size() < 65536)
    portion += std::string(63, '~') + "\n";
  for (auto left = static_cast<std::size_t>(bytes); left > 0;) {
    const auto size = std::min(left, portion.size());
    // A reader that goes away is part of what is rehearsed.
    if (!platform::writeAll(descriptor, std::string_view(portion).substr(0, size))) return;
    left -= size;
  }
}

/// Programs that this one turns into are cut as well. With the signal ignored a write beyond the limit fails, as one
/// does on a disk that is full, and ends nobody.
void cut(std::int32_t bytes) {
  const rlimit limit{.rlim_cur = static_cast<rlim_t>(bytes), .rlim_max = static_cast<rlim_t>(bytes)};
  ::setrlimit(RLIMIT_FSIZE, &limit);
  ::signal(SIGXFSZ, SIG_IGN);
}

/// What the tool itself would have done is not done.
int lie(const StageRoot& root, const Lie& fault) {
  const auto file = root.existing(fault.file);
  const auto bytes = file ? platform::posix::readWhole(*file) : std::nullopt;
  if (bytes) static_cast<void>(platform::writeAll(STDOUT_FILENO, *bytes));
  return fault.status;
}

}  // namespace

std::optional<ToolFault> toolFault(std::string_view text) {
  auto rest = text;
  const auto kind = takeWord(rest);
  if (kind == "hang" && (rest.empty() || rest == "hard")) return Hang{.hard = !rest.empty()};
  if (kind == "pause" && rest.empty()) return Pause();
  if (kind == "lie") return lieOf(rest);
  const auto number = values::decimalInt32(rest);
  if (!number || *number < 0) return std::nullopt;
  if (kind == "hold") return Hold{.milliseconds = *number};
  if (kind == "fail") return Fail{.status = *number};
  if (kind == "slow") return Slow{.milliseconds = *number};
  if (kind == "flood") return Flood{.bytes = *number};
  if (kind == "die") return Die{.signal = *number};
  if (kind == "cut") return Cut{.bytes = *number};
  return std::nullopt;
}

std::optional<ToolFault> toolFaultFor(std::string_view lines, std::string_view verb) {
  std::optional<ToolFault> any;
  std::optional<ToolFault> own;
  eachLine(lines, [&](std::string_view line) {
    const auto named = takeWord(line);
    if (named == verb && !own) own = toolFault(line);
    if (named == "*" && !any) any = toolFault(line);
  });
  return own ? own : any;
}

/// The newest order stands last; an earlier one for the same verb goes.
std::string withToolFault(std::string_view lines, std::string_view verb,
                          std::optional<std::string_view> fault) {
  std::string kept;
  eachLine(lines, [&](std::string_view line) {
    auto rest = line;
    if (!line.empty() && takeWord(rest) != verb) kept.append(line).append("\n");
  });
  if (fault) kept.append(verb).append(" ").append(*fault).append("\n");
  if (!kept.empty()) kept.pop_back();
  return kept;
}

/// The administrator puts this into the environment of all that it starts.
std::string actingUser() {
  return std::getenv("TAMO_STAGE_ADMINISTRATOR") == nullptr ? "user" : "administrator";
}

/// A fault that ends the tool gives its status; after any other the tool does its work.
std::optional<int> sufferFault(const StageRoot& root, const std::string& tool, const std::string& verb) {
  const auto fault = orderedFault(root, tool, verb);
  if (!fault) return std::nullopt;
  const Overloaded suffer = {[&](const Hang& ordered) -> std::optional<int> {
                               hang(root, ordered);
                               return 1;
                             },
                             [](const Hold& ordered) -> std::optional<int> {
                               hold(std::chrono::milliseconds(ordered.milliseconds));
                               return std::nullopt;
                             },
                             [](const Fail& ordered) -> std::optional<int> { return ordered.status; },
                             [](const Slow& ordered) -> std::optional<int> {
                               std::this_thread::sleep_for(std::chrono::milliseconds(ordered.milliseconds));
                               return std::nullopt;
                             },
                             [&](const Pause&) -> std::optional<int> {
                               return pause(root, tool, verb) ? std::nullopt : std::optional(1);
                             },
                             [](const Flood& ordered) -> std::optional<int> {
                               flood(STDOUT_FILENO, ordered.bytes);
                               flood(STDERR_FILENO, ordered.bytes);
                               return std::nullopt;
                             },
                             [&](const Lie& ordered) -> std::optional<int> { return lie(root, ordered); },
                             [](const Die& ordered) -> std::optional<int> {
                               ::raise(ordered.signal);
                               return std::nullopt;
                             },
                             [](const Cut& ordered) -> std::optional<int> {
                               cut(ordered.bytes);
                               return std::nullopt;
                             }};
  return std::visit(suffer, *fault);
}

}  // namespace tamo::stage

#pragma once

#include <chrono>
#include <mutex>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

/// Programs that a place or a check starts. POSIX alone. Any thread.
namespace tamo::acceptance {

struct Program {
  /// The path first, which is absolute.
  std::vector<std::string> words;
  /// The whole environment; absent hands this process's own on.
  std::optional<std::vector<std::string>> environment{};
  /// Where both outputs go; -1 is the null device.
  int output = -1;
};

/// Held by whoever writes an executable that is to be started: a program that is started meanwhile, on any thread, would
/// inherit the open file for a moment, and the kernel refuses to start what somebody may write to.
[[nodiscard]] std::unique_lock<std::mutex> whileNothingStarts();

/// Starts it in a process group of its own, with every signal as by default. Raises PlaceError when it cannot be
/// started. The caller waits for it.
pid_t startProgram(const Program& program);

/// What came of a program that was run to its end.
struct Run {
  /// The exit status, 128 and the signal's number, or -1 when it did not end in time and was killed.
  int status = 0;
  /// Standard output and standard error, as they came.
  std::string text;
};

Run runProgram(const Program& program, std::chrono::seconds limit = std::chrono::seconds(60));

/// Its status as in Run, once it has ended; absent while it runs.
[[nodiscard]] std::optional<int> endOf(pid_t pid);

}  // namespace tamo::acceptance

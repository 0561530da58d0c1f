#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

/// A line of the companion's log as a place gives it, and what can be asked of its text. Pure.
namespace tamo::acceptance {

enum class Level { Default, Error, Other };
enum class Mark { Public, Private };

struct Line {
  /// Microseconds since 1970.
  std::int64_t time = 0;
  pid_t pid = 0;
  Level level = Level::Default;
  /// As a person sees it: a private argument reads "<private>".
  std::string text{};
  /// Of its arguments, in order.
  std::vector<Mark> marks{};
};

/// The marks of the placeholders of a format, which "%{public}s" and "%{bool,public}d" are. A placeholder that
/// says nothing counts as private, as the system takes a text.
[[nodiscard]] std::vector<Mark> marksOfFormat(std::string_view format);

/// The line as it is compared: "error " in front of one at error level, and without the private argument at the
/// end of an outcome line, which a place may show as "<private>" or, when it is empty, as nothing.
[[nodiscard]] std::string comparable(const Line& line);

/// Whether the text is all of the pattern, in which "*" stands for any text.
[[nodiscard]] bool matches(std::string_view pattern, std::string_view text);

/// Whether the line is the last that a companion leaves: an outcome, a refusal or the result of a move.
[[nodiscard]] bool endsAction(const Line& line);

}  // namespace tamo::acceptance

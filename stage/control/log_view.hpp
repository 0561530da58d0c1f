#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Reads the stage's log for a person: seven columns a line, of which the third is the level, the sixth the
/// text as shown and the seventh the text with its marks.
namespace tamo::stage {

enum class LogView { Plain, Marks };

/// "LEVEL TEXT", or the marked text alone. A line of another shape comes back as it is.
[[nodiscard]] std::string viewedLine(std::string_view line, LogView view);

/// Reads a growing file line by line. A file that is not there yet has no lines.
class LogReader {
 public:
  explicit LogReader(std::string path) : path_(std::move(path)) {}

  /// The complete lines since the last call, without their line breaks.
  [[nodiscard]] std::vector<std::string> newLines();

 private:
  std::string path_;
  std::uint64_t read_ = 0;
};

}  // namespace tamo::stage

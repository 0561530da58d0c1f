#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

/// Takes a stream of bytes apart into lines, in bounded memory whatever the bytes are. One thread.
namespace tamo::support {

struct Line {
  /// Without the line break, and without a carriage return in front of it. Valid until the next line is taken.
  std::string_view text{};
  /// Whether the marker stands in it.
  bool marked = false;
  /// Whether it is longer than a line may be; `text` is its front then.
  bool tooLong = false;
  /// Whether a line break ends it. Only the last line of a stream can be without one.
  bool ended = true;
};

/// Every byte is looked at by two searches, for the marker and for the line's end, both of which the system's library
/// makes many bytes at a time: a line of somebody else costs little more than it costs grep.
class LineFeed {
 public:
  /// Fills a buffer of this size from the front and tells with how much; 0 at the end of the stream.
  using Source = std::function<std::size_t(char* buffer, std::size_t size)>;
  /// What is longer is cut there.
  static constexpr std::size_t longestLine = std::size_t{1} << 20U;

  /// `marker` is not empty.
  LineFeed(Source source, std::string marker);

  /// Absent after the last line.
  [[nodiscard]] std::optional<Line> next();

 private:
  void skipRest();
  [[nodiscard]] std::optional<std::size_t> lineEnd();
  [[nodiscard]] bool fill();
  [[nodiscard]] bool markedBefore(std::size_t end);
  [[nodiscard]] Line taken(std::size_t end, bool ended);
  [[nodiscard]] Line takenTooLong();

  Source source_;
  std::string marker_;
  std::string buffer_;
  /// What is not taken yet lies between these two.
  std::size_t at_ = 0;
  std::size_t filled_ = 0;
  /// Up to here no line break was found.
  std::size_t searched_ = 0;
  /// Where the first marker behind `at_` stands, or `filled_`; absent when it has to be looked for.
  std::optional<std::size_t> markerAt_;
  bool skips_ = false;
};

}  // namespace tamo::support

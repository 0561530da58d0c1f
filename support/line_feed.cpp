#include "support/line_feed.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

namespace tamo::support {
namespace {

/// As much at a time as stays in a processor's cache until it has been searched.
constexpr std::size_t piece = std::size_t{1} << 16U;

}  // namespace

LineFeed::LineFeed(Source source, std::string marker)
    : source_(std::move(source)), marker_(std::move(marker)) {}

/// The length is asked before more is read. That is what bounds the memory, even if a stream has no line break at all.
std::optional<Line> LineFeed::next() {
  if (skips_) skipRest();
  while (true) {
    const auto end = lineEnd();
    if (end.value_or(filled_) - at_ > longestLine) return takenTooLong();
    if (end) return taken(*end, true);
    if (fill()) continue;
    if (at_ == filled_) return std::nullopt;
    return taken(filled_, false);
  }
}

/// From where the last search ended: a long line comes in many pieces, and would otherwise be searched from its front
/// for each of them.
std::optional<std::size_t> LineFeed::lineEnd() {
  const auto* found = std::memchr(buffer_.data() + searched_, '\n', filled_ - searched_);
  if (found == nullptr) {
    searched_ = filled_;
    return std::nullopt;
  }
  return static_cast<std::size_t>(static_cast<const char*>(found) - buffer_.data());
}

/// What is left moves to the front, and the buffer grows where a line needs it. A marker that the end of the buffer cuts
/// in two belongs to a line that is not whole yet, and is looked for again.
bool LineFeed::fill() {
  std::memmove(buffer_.data(), buffer_.data() + at_, filled_ - at_);
  searched_ -= at_;
  filled_ -= at_;
  at_ = 0;
  markerAt_.reset();
  if (buffer_.size() < filled_ + piece) buffer_.resize(filled_ + piece);
  const auto added = source_(buffer_.data() + filled_, piece);
  filled_ += added;
  return added != 0;
}

/// One search serves all the lines up to the marker that it finds. In the log of a whole system few lines have it, so
/// nearly all are decided by one comparison.
bool LineFeed::markedBefore(std::size_t end) {
  if (!markerAt_ || *markerAt_ < at_) {
    const auto* found = ::memmem(buffer_.data() + at_, filled_ - at_, marker_.data(), marker_.size());
    markerAt_ = found == nullptr ? filled_
                                 : static_cast<std::size_t>(static_cast<const char*>(found) - buffer_.data());
  }
  return *markerAt_ + marker_.size() <= end;
}

Line LineFeed::taken(std::size_t end, bool ended) {
  Line line{
      .text = std::string_view(buffer_).substr(at_, end - at_), .marked = markedBefore(end), .ended = ended};
  if (line.text.ends_with('\r')) line.text.remove_suffix(1);
  at_ = std::min(end + 1, filled_);
  searched_ = at_;
  return line;
}

Line LineFeed::takenTooLong() {
  const auto end = at_ + longestLine;
  Line line{.text = std::string_view(buffer_).substr(at_, longestLine),
            .marked = markedBefore(end),
            .tooLong = true};
  at_ = end;
  skips_ = true;
  return line;
}

/// Up to the next line break, or to the end of the stream.
void LineFeed::skipRest() {
  skips_ = false;
  searched_ = at_;
  while (true) {
    const auto end = lineEnd();
    at_ = end ? *end + 1 : filled_;
    searched_ = at_;
    if (end || !fill()) return;
  }
}

}  // namespace tamo::support

#include "support/log_reader.hpp"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace tamo::support {
namespace {

/// Of lines in a row that nobody knows, so many are shown; and of a line, so many bytes. A file of another kind, put
/// behind a log, would otherwise be printed whole.
constexpr std::size_t mostStrays = 20;
constexpr std::size_t shownBytes = 4096;
/// A message that goes on for longer than this is not the companion's.
constexpr std::size_t mostMessageLines = 16;
/// Two processes may be out of order by a moment.
constexpr std::int64_t outOfOrderMicros = 1'000'000;

std::string asItIs(const Line& line) {
  std::string text(line.text.substr(0, shownBytes));
  if (line.tooLong || line.text.size() > shownBytes) text += " …";
  return text;
}

bool isBlank(std::string_view text) {
  return text.find_first_not_of(" \t") == std::string_view::npos;
}

}  // namespace

void LogReader::take(const Line& line) {
  ++counts_.lines;
  auto read = recognised(line.text, line.marked);
  if (read.kind == Kind::Unknown) return takeUnknown(line);
  endUnfinished();
  // An object is whole on its line; in the other forms the next lines may be the rest of a message.
  inForeign_ = read.kind == Kind::Foreign && !line.text.starts_with('{');
  if (read.kind == Kind::Foreign) takeForeign(line);
  if (read.kind == Kind::Product) takeProduct(line, *std::move(read.entry));
}

void LogReader::takeForeign(const Line& line) {
  ++counts_.foreign;
  if (!line.marked) return;
  ++counts_.naming;
  if (all_)
    actions_.take(Aside{.remark = "Another program's line that names the product:", .lines = {asItIs(line)}});
}

/// A message that says something is whole. Only one that says nothing by itself is kept open for what may be the rest
/// of it.
void LogReader::takeProduct(const Line& line, Entry entry) {
  ++counts_.own;
  endStrays();
  noteClock(entry.at);
  if (understood(entry)) return;
  const bool mayGoOn = entry.mayGoOn && line.ended;
  unfinished_ = Unfinished{.entry = std::move(entry), .lines = {asItIs(line)}, .cut = !line.ended};
  if (!mayGoOn) endUnfinished();
}

bool LogReader::understood(const Entry& entry) {
  auto message = messageIn(entry.message);
  if (!message) return false;
  actions_.take(entry.pid, {.at = entry.at, .message = *std::move(message)});
  return true;
}

/// A line without a form of its own may be the rest of a message. Nothing tells where a message ends, so it ends as soon
/// as it says something.
bool LogReader::goesOn(const Line& line) {
  if (!unfinished_ || unfinished_->lines.size() == mostMessageLines || line.text.size() > shownBytes)
    return false;
  unfinished_->entry.message.append("\n").append(line.text);
  unfinished_->lines.push_back(asItIs(line));
  if (understood(unfinished_->entry)) unfinished_.reset();
  return true;
}

/// The rest of another program's message is left out like its front. The last line of a log is not: when it is cut, it
/// may have been the companion's.
void LogReader::takeUnknown(const Line& line) {
  counts_.cut = !line.ended;
  counts_.binary = counts_.binary || line.text.contains('\0');
  if (line.marked) ++counts_.naming;
  if (goesOn(line)) return;
  endUnfinished();
  if (isBlank(line.text) || (inForeign_ && line.ended)) return;
  takeStray(line);
}

/// A last line without its end is told apart from other strays, because it may be the very line that is looked for.
void LogReader::takeStray(const Line& line) {
  if (line.ended || counts_.own == 0) {
    ++strays_.count;
    if (strays_.first.size() < mostStrays) strays_.first.push_back(asItIs(line));
    return;
  }
  endStrays();
  actions_.take(Aside{.remark = "The log ends in the middle of this line:", .lines = {asItIs(line)}});
}

void LogReader::endUnfinished() {
  if (!unfinished_) return;
  actions_.take(Aside{.remark = unfinished_->cut
                                    ? "The log ends in the middle of this line of the companion's:"
                                    : "A line of the companion's that is not known here:",
                      .lines = std::move(unfinished_->lines)});
  unfinished_.reset();
}

/// Before the first line of the companion it is not known yet whether this is a log of it at all; then there is nothing
/// that they could be a part of.
void LogReader::endStrays() {
  if (strays_.count == 0) return;
  const auto more = strays_.count - strays_.first.size();
  if (more != 0) strays_.first.push_back("… and " + std::to_string(more) + " more lines like these");
  actions_.take(Aside{
      .remark = strays_.count == 1 ? "A line that is not known here:" : "Lines that are not known here:",
      .lines = std::move(strays_.first)});
  strays_ = {};
}

/// A clock that is set forward looks like time that passes.
void LogReader::noteClock(const Moment& at) {
  const auto back = last_ ? last_->micros() - at.micros() : 0;
  last_ = at;
  if (back <= outOfOrderMicros) return;
  actions_.take(Aside{.remark = "Here the log's clock goes back by " + lasting(back) + "."});
}

void LogReader::finish() {
  endUnfinished();
  if (counts_.own != 0) endStrays();
  actions_.finish();
}

}  // namespace tamo::support

#include "stage/picture/picture_words.hpp"

#include <algorithm>

namespace tamo::stage {
namespace {

/// In UTF-8 every byte of a character but the first looks like this.
bool isInside(char character) {
  return (static_cast<unsigned char>(character) & 0xC0U) == 0x80U;
}

/// Where so many characters end.
std::size_t endOf(std::string_view text, std::size_t columns) {
  std::size_t end = 0;
  while (end < text.size() && columns > 0) {
    ++end;
    while (end < text.size() && isInside(text[end]))
      ++end;
    --columns;
  }
  return end;
}

}  // namespace

std::string_view nameOf(RowKind kind) {
  switch (kind) {
    case RowKind::Steps:
      return "steps";
    case RowKind::Lock:
      return "lock";
    case RowKind::Watch:
      return "watch";
    case RowKind::Log:
      return "log";
    case RowKind::Tool:
      return "tool";
    case RowKind::Core:
      return "core";
    case RowKind::Helper:
      return "helper";
    case RowKind::Launchd:
      return "launchd";
    case RowKind::Application:
      return "application";
    case RowKind::Companion:
      return "companion";
  }
  return "";
}

std::string_view nameOf(SpanKind kind) {
  switch (kind) {
    case SpanKind::Life:
      return "life";
    case SpanKind::Step:
      return "step";
    case SpanKind::Wait:
      return "wait";
    case SpanKind::Lock:
      return "held";
  }
  return "";
}

std::string_view nameOf(MarkKind kind) {
  switch (kind) {
    case MarkKind::End:
      return "end";
    case MarkKind::Killed:
      return "killed";
    case MarkKind::Log:
      return "line";
    case MarkKind::Alive:
      return "alive";
    case MarkKind::Gone:
      return "gone";
    case MarkKind::Moment:
      return "moment";
  }
  return "";
}

/// A character counts as one column. Wide ones, as some file names have, take two on a terminal and shift a row by one;
/// nothing else depends on it.
std::size_t columnsOf(std::string_view text) {
  return static_cast<std::size_t>(std::ranges::count_if(text, [](char one) { return !isInside(one); }));
}

/// The sign for what is left out takes one of the columns.
std::string cutTo(std::string_view text, std::size_t columns) {
  if (columnsOf(text) <= columns) return std::string(text);
  if (columns == 0) return "";
  return std::string(text.substr(0, endOf(text, columns - 1))) + "…";
}

/// A path may be longer than a line, and is cut where that is full.
std::vector<std::string> wrapped(std::string_view text, std::size_t columns) {
  std::vector<std::string> lines;
  while (columnsOf(text) > columns) {
    const auto end = endOf(text, columns);
    // A blank right behind the line ends it as well.
    const auto blank = text.substr(0, end + 1).rfind(' ');
    const bool breaks = blank != std::string_view::npos && blank > 0;
    lines.emplace_back(text.substr(0, breaks ? blank : end));
    text.remove_prefix(breaks ? blank + 1 : end);
  }
  lines.emplace_back(text);
  return lines;
}

}  // namespace tamo::stage

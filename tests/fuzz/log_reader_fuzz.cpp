#include <algorithm>
#include <cstddef>

#include "fuzz/insist.hpp"
#include "fuzz/target.hpp"
#include "support/entry.hpp"
#include "support/explanation.hpp"
#include "support/layout.hpp"
#include "support/message.hpp"
#include "support/tamo_log.hpp"
#include "values/text.hpp"

/// A log of any bytes, told. The first byte is the size of the pieces in which the log comes.
namespace tamo::fuzz {
namespace {

struct Told {
  bool found = false;
  std::string text{};
  bool operator==(const Told&) const = default;
};

Told told(std::string_view log, std::size_t piece, const support::Manner& manner) {
  Told result;
  const auto source = [log, piece, at = std::size_t{0}](char* buffer, std::size_t size) mutable {
    const auto given = std::min({piece, size, log.size() - at});
    std::copy_n(log.begin() + static_cast<std::ptrdiff_t>(at), given, buffer);
    at += given;
    return given;
  };
  result.found = support::tellLog("log", source, manner, [&](std::string_view text) { result.text += text; });
  return result;
}

std::size_t characters(std::string_view line) {
  return static_cast<std::size_t>(std::ranges::count_if(
      line, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }));
}

void checkText(std::string_view text, std::size_t width) {
  insist(values::isUtf8(text), "what is told is UTF-8");
  insist(text.ends_with('\n'), "what is told ends with a line");
  for (const char byte : text)
    insist(byte == '\n' || byte < 0 || (byte >= ' ' && byte != '\x7F'),
           "nothing that is told acts on a terminal");
  for (std::optional<std::string_view> rest = text; rest;)
    insist(characters(values::takeLine(rest)) <= width, "no line is wider than it should be");
}

/// A line that says something says the same when it is asked again, and its end is known.
void checkMessages(std::string_view log) {
  for (std::optional<std::string_view> rest = log; rest;) {
    const auto message = support::messageIn(values::takeLine(rest));
    if (!message) continue;
    const support::Action action{.pid = 1, .lines = {{.at = {}, .message = *message}}};
    const auto story = support::storyOf(action);
    insist(!story.verdict.empty() && story.steps.size() == 1 && !story.steps.front().text.empty(),
           "every line that is known is explained");
  }
}

}  // namespace

void readInput(std::string_view bytes) {
  const std::size_t piece = bytes.empty() ? 1 : static_cast<unsigned char>(bytes.front()) + std::size_t{1};
  const auto log = bytes.substr(bytes.empty() ? 0 : 1);
  const support::Manner manner{.width = support::narrowest, .all = piece % 2 == 0};
  const auto once = told(log, piece, manner);
  checkText(once.text, manner.width);
  insist(once == told(log, log.size() + 1, manner), "the pieces in which a log comes do not matter");
  insist(!once.found || log.contains(support::subsystem),
         "nothing is found where the companion is not named");
  checkMessages(log);
}

}  // namespace tamo::fuzz

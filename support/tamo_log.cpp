#include "support/tamo_log.hpp"

#include <algorithm>
#include <utility>

#include "support/layout.hpp"
#include "support/log_reader.hpp"
#include "values/text.hpp"

namespace tamo::support {
namespace {

/// The one style that says where a message ends and in which zone its times are.
constexpr std::string_view exporting =
    R"(log show --last 1h --style ndjson --predicate 'subsystem == "studio.pell.Tamo.Core"')";

std::string count(std::uint64_t number, const std::string& one, const std::string& many) {
  return std::to_string(number) + " " + (number == 1 ? one : many);
}

/// Why a log has nothing to tell, in one sentence. Zero bytes are asked for before the name is: in UTF-16 every letter
/// of it has one beside it, so it is never found, and the log would be called somebody else's.
std::string whyNothing(const Counts& counts) {
  if (counts.lines == 0) return "the log is empty";
  if (counts.binary)
    return "this is no text. A .logarchive, or a log in UTF-16, has to be exported first: " +
           std::string(exporting);
  const auto all = count(counts.lines, "line", "lines");
  const std::string end = (counts.cut ? ", and the last one is cut. " : ". ");
  if (counts.naming == 0)
    return "none of " + all + " is Tamo Core's" + end +
           "This gives a log that has them: " + std::string(exporting);
  return count(counts.naming, "line names", "lines name") + " Tamo Core, but none of " + all +
         " is a whole line of its own in a form that is known here" + end +
         "This form is: " + std::string(exporting);
}

/// What was left out is counted, so that nobody takes the log of a whole system for one that has nothing else in it.
std::string summary(const Counts& counts, std::uint64_t actions, bool all) {
  auto text = count(actions, "action", "actions") + " in " + count(counts.lines, "line", "lines") + ".";
  if (counts.foreign == 0) return text;
  text += " " + count(counts.foreign, "line is another program's", "lines are other programs'");
  if (counts.naming == 0 || all) return text + ".";
  return text + "; " + count(counts.naming, "names", "name") + " the product (--all shows them).";
}

/// Adds what one word asks for; false for a word that the command doesn't know.
bool add(Wish& wish, const std::string& word) {
  constexpr std::string_view width = "--width=";
  if (word == "--help" || word == "-h") {
    wish.help = true;
  } else if (word == "--all") {
    wish.all = true;
  } else if (word.starts_with(width)) {
    const auto asked = values::decimalInt32(word.substr(width.size()));
    if (!asked || *asked <= 0) return false;
    wish.width = static_cast<std::size_t>(*asked);
  } else if (word.starts_with('-') && word != "-") {
    return false;
  } else {
    wish.logs.push_back(word);
  }
  return true;
}

}  // namespace

std::optional<Wish> wishOf(const std::vector<std::string>& words) {
  Wish wish;
  for (const auto& word : words)
    if (!add(wish, word)) return std::nullopt;
  if (wish.logs.empty()) wish.logs.emplace_back("-");
  return wish;
}

std::string_view usage() {
  return R"(tamo-log [--all] [--width=N] [LOG…]

Tells what the log of Tamo Core says: each action with its times, what was asked, what
the companion saw and did and why, what to do next, and the paragraph of
docs/troubleshooting.md that fits. Reads the named logs, or standard input. A log is
what a Mac exports,

  log show --last 1h --style ndjson --predicate 'subsystem == "studio.pell.Tamo.Core"'

in this style, in --style compact or syslog or in none, or a stage's own (.stage/log).

  --all       shows entries of other programs that name the product as well
  --width=N   sets the text in N columns, 40 to 100; otherwise as wide as the terminal

Ends with 0 when something was told, with 1 when nothing of Tamo Core was found, and with
2 when a log cannot be read or the command is not understood.
)";
}

std::size_t widthFor(const Wish& wish, std::optional<std::size_t> terminal) {
  return std::clamp(wish.width.value_or(terminal.value_or(80)), narrowest, widest);
}

/// Line by line from its source to the printer: a log may be larger than the memory, and is told while it still comes.
bool tellLog(std::string_view name, LineFeed::Source source, const Manner& manner, const Printer::Out& out) {
  Printer printer(manner.width, out);
  LogReader reader(manner.all, [&printer](const Item& item) { printer.print(item); });
  LineFeed lines(std::move(source), std::string(subsystem));
  while (const auto line = lines.next())
    reader.take(*line);
  reader.finish();
  const auto& counts = reader.counts();
  const bool found = counts.own != 0;
  printer.remark(found ? summary(counts, printer.actions(), manner.all)
                       : std::string(name) + ": " + whyNothing(counts));
  return found;
}

}  // namespace tamo::support

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/line_feed.hpp"
#include "support/printer.hpp"

/// The command: its words, what it does with a log, and what it ends with. Pure but for the source and the output that
/// it is handed.
namespace tamo::support {

/// What the command line asks for.
struct Wish {
  bool help = false;
  bool all = false;
  /// Absent where the terminal decides.
  std::optional<std::size_t> width{};
  /// "-" is the standard input.
  std::vector<std::string> logs{};
};

/// `words` are the arguments without the program. Absent for what the command doesn't know.
[[nodiscard]] std::optional<Wish> wishOf(const std::vector<std::string>& words);

[[nodiscard]] std::string_view usage();

/// The width that text is set in: what was asked for, or else what the terminal has, or else 80; never less than 40 and
/// never more than 100.
[[nodiscard]] std::size_t widthFor(const Wish& wish, std::optional<std::size_t> terminal);

struct Manner {
  std::size_t width = 80;
  bool all = false;
};

/// Tells one log, of this name, as it reads it. Gives whether anything of the companion was found; if not, one paragraph
/// says so.
[[nodiscard]] bool tellLog(std::string_view name, LineFeed::Source source, const Manner& manner,
                           const Printer::Out& out);

}  // namespace tamo::support

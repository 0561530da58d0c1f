#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "support/moment.hpp"

/// What one line of a log is, in each of the forms that a log is exported in. Pure.
namespace tamo::support {

enum class Level { Default, Error, Fault, Other };

/// A line of the companion's own.
struct Entry {
  Moment at{};
  /// 0 where the log doesn't tell it.
  std::int64_t pid = 0;
  Level level = Level::Default;
  std::string message{};
  /// Whether the form lets a message run over several lines, without a mark where it ends.
  bool mayGoOn = false;
};

enum class Kind {
  /// The companion's: `entry` is there.
  Product,
  /// An entry of another program.
  Foreign,
  /// What an export has around its entries: a heading, a count.
  Frame,
  /// In none of the known forms.
  Unknown,
};

struct Recognised {
  Kind kind = Kind::Unknown;
  std::optional<Entry> entry{};
};

/// The subsystem of the companion's log: no line without it is the companion's.
inline constexpr std::string_view subsystem = "studio.pell.Tamo.Core";

/// Tells what the line is. It may be a Mac's, as `log show` writes it with `--style ndjson`, `compact`, `syslog` or
/// without a style, or a stage's. `marked` says whether the subsystem's name stands in it anywhere: a line without it
/// is only looked at from outside.
[[nodiscard]] Recognised recognised(std::string_view line, bool marked);

}  // namespace tamo::support

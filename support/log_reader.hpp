#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/actions.hpp"
#include "support/entry.hpp"
#include "support/line_feed.hpp"

namespace tamo::support {

/// What a log consisted of.
struct Counts {
  std::uint64_t lines = 0;
  /// The companion's.
  std::uint64_t own = 0;
  /// Other programs'.
  std::uint64_t foreign = 0;
  /// Lines that the product is named in, and that are not the companion's.
  std::uint64_t naming = 0;
  /// Whether it ends in the middle of a line.
  bool cut = false;
  /// Whether a zero byte was seen, which no text has.
  bool binary = false;
};

/// Reads a log line by line: hands the companion's actions on, and whatever is in no known form as it is; entries of
/// other programs are left out. In bounded memory. One thread.
class LogReader {
 public:
  /// With `all`, entries of other programs that name the product are handed on as they are, too. `tell` is called from
  /// within the operations.
  LogReader(bool all, Actions::Tell tell) : all_(all), actions_(std::move(tell)) {}

  void take(const Line& line);
  /// Hands on what is left.
  void finish();

  [[nodiscard]] const Counts& counts() const { return counts_; }

 private:
  /// An entry that says nothing known by itself; the rest of its message may follow.
  struct Unfinished {
    Entry entry{};
    std::vector<std::string> lines{};
    /// Whether the log ends in it.
    bool cut = false;
  };
  /// Lines in a row that are in no known form.
  struct Strays {
    std::vector<std::string> first{};
    std::uint64_t count = 0;
  };

  void takeProduct(const Line& line, Entry entry);
  void takeForeign(const Line& line);
  void takeUnknown(const Line& line);
  [[nodiscard]] bool understood(const Entry& entry);
  [[nodiscard]] bool goesOn(const Line& line);
  void endUnfinished();
  void endStrays();
  void takeStray(const Line& line);
  void noteClock(const Moment& at);

  const bool all_;
  Actions actions_;
  Counts counts_;
  std::optional<Unfinished> unfinished_;
  Strays strays_;
  /// Whether the last entry was another program's, which may go on in the next line.
  bool inForeign_ = false;
  std::optional<Moment> last_;
};

}  // namespace tamo::support

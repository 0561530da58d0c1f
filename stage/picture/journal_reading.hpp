#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Reads a stage's journal (platform/stage/journal.hpp) back, whatever has become of the file. Pure.
namespace tamo::stage {

/// One line of the journal. A word that is known has the texts that belong to it, and numbers where numbers belong.
struct Moment {
  /// Microseconds of a clock whose origin means nothing.
  std::int64_t at = 0;
  std::int32_t pid = 0;
  std::string word{};
  std::vector<std::string> texts{};

  friend bool operator==(const Moment&, const Moment&) = default;
};

struct JournalReading {
  /// By time; what has one time stands in the order of the file.
  std::vector<Moment> moments{};
  /// Lines that are none of a journal, the cut one not counted.
  std::size_t unreadable = 0;
  /// The file ends in the middle of a line.
  bool cutOff = false;
  /// How often the clock went back, as it does when a machine is started anew. What follows is told as if the clock
  /// had stood still meanwhile. A second less than before is none: writers may be held up between clock and file.
  std::size_t setBacks = 0;
};

[[nodiscard]] JournalReading readJournal(std::string_view bytes);

/// The number among the texts of a moment; 0 when there is none, which a known word does not have.
[[nodiscard]] std::int32_t numberIn(const Moment& moment, std::size_t place);

/// The texts from the given one on, with single blanks between.
[[nodiscard]] std::string textsFrom(const Moment& moment, std::size_t place);

}  // namespace tamo::stage

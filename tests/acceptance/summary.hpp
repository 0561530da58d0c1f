#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "acceptance/report.hpp"

/// What is shown on the terminal while a set is played: the check that is being played, in one line that is written
/// over, a line for each that did not hold, and one screen at the end.
namespace tamo::acceptance {

class Summary {
 public:
  /// `live`: the terminal can write over a line.
  Summary(std::ostream& out, std::size_t count, bool live) : out_(out), count_(count), live_(live) {}

  void begins(const Check& check);
  void ends(const Played& played);
  /// A row a theme, and what was found.
  void closes(const Report& report, const std::string& folder);

 private:
  void line(const std::string& text);

  std::ostream& out_;
  std::size_t count_;
  bool live_;
  std::size_t ended_ = 0;
};

/// A row a theme: "hard stop   8 held, 1 not played here".
[[nodiscard]] std::string themeRows(const std::vector<Played>& checks);

}  // namespace tamo::acceptance

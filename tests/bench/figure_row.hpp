#pragma once

#include <string>

namespace tamo::bench {

/// A row of the table that `prove/figures` ends with, in Markdown, on standard output.
struct FigureRow {
  std::string what;
  std::string asked;
  std::string measured;
  bool held = false;
};

void printRow(const FigureRow& row);

/// What snprintf makes of it.
[[nodiscard, gnu::format(printf, 1, 2)]] std::string text(const char* format, ...);

}  // namespace tamo::bench

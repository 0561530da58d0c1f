#include "figure_row.hpp"

#include <array>
#include <cstdarg>
#include <cstdio>

namespace tamo::bench {

void printRow(const FigureRow& row) {
  std::printf("| %s | %s | %s | %s |\n", row.what.c_str(), row.asked.c_str(), row.measured.c_str(),
              row.held ? "held" : "**not held**");
  std::fflush(stdout);
}

std::string text(const char* format, ...) {
  std::array<char, 512> written{};
  std::va_list values;
  va_start(values, format);
  std::vsnprintf(written.data(), written.size(), format, values);
  va_end(values);
  return written.data();
}

}  // namespace tamo::bench

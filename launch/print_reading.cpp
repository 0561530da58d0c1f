#include "launch/print_reading.hpp"

#include <string_view>

#include "platform/text.hpp"

namespace tamo {
namespace {

bool hasPidLine(std::string_view text) {
  std::optional rest(text);
  while (rest) {
    const auto line = platform::takeLine(rest);
    if (platform::trimmed(line).starts_with("pid = ")) return true;
  }
  return false;
}

}  // namespace

bool jobRunning(const std::optional<PrintResult>& print) {
  if (!print) return true;
  if (print->code != 0) return print->code != jobNotFound;
  return !print->text || hasPidLine(*print->text);
}

}  // namespace tamo

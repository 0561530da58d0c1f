#include "acceptance/log_line.hpp"

#include <algorithm>

namespace tamo::acceptance {
namespace {

constexpr std::string_view hidden = "<private>";

bool isConversion(char letter) {
  return std::string_view("sdux@").contains(letter);
}

}  // namespace

std::vector<Mark> marksOfFormat(std::string_view format) {
  std::vector<Mark> marks;
  for (std::size_t at = format.find('%'); at < format.size(); at = format.find('%', at)) {
    if (format.substr(at).starts_with("%%")) {
      at += 2;
      continue;
    }
    const auto end = static_cast<std::size_t>(std::ranges::find_if(format.substr(at), isConversion) -
                                              format.substr(at).begin());
    const auto close = format.find('}', at);
    const bool named = format.substr(at).starts_with("%{") && close != std::string_view::npos;
    const auto options = named ? format.substr(at, close - at) : std::string_view();
    marks.push_back(options.contains("public") ? Mark::Public : Mark::Private);
    at = named ? close : at + end;
  }
  return marks;
}

std::string comparable(const Line& line) {
  std::string_view text = line.text;
  if (text.contains(" -> status ") && text.ends_with(hidden)) text.remove_suffix(hidden.size());
  return (line.level == Level::Error ? "error " : "") + std::string(text);
}

bool matches(std::string_view pattern, std::string_view text) {
  const auto star = pattern.find('*');
  if (star == std::string_view::npos) return pattern == text;
  if (!text.starts_with(pattern.substr(0, star))) return false;
  text.remove_prefix(star);
  pattern.remove_prefix(star + 1);
  for (std::size_t skip = 0; skip <= text.size(); ++skip)
    if (matches(pattern, text.substr(skip))) return true;
  return false;
}

bool endsAction(const Line& line) {
  return line.text.contains(" -> ") || line.text.contains(" refused: ");
}

}  // namespace tamo::acceptance

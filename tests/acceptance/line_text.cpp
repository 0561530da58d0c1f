#include "acceptance/line_text.hpp"

#include <array>
#include <cstdio>
#include <ctime>

namespace tamo::acceptance {
namespace {

std::string timeText(std::int64_t micros) {
  const auto seconds = static_cast<std::time_t>(micros / 1'000'000);
  std::tm parts{};
  ::gmtime_r(&seconds, &parts);
  std::array<char, 32> clock{};
  std::array<char, 16> fraction{};
  std::strftime(clock.data(), clock.size(), "%H:%M:%S", &parts);
  std::snprintf(fraction.data(), fraction.size(), ".%03d", static_cast<int>(micros / 1000 % 1000));
  return std::string(clock.data()) + fraction.data();
}

const char* levelText(Level level) {
  if (level == Level::Other) return "other";
  return level == Level::Error ? "error" : "default";
}

std::string onOneLine(const std::string& text) {
  std::string line;
  for (const char character : text)
    line += character == '\n' ? std::string("\\n") : std::string(1, character);
  return line;
}

std::string marksText(const std::vector<Mark>& marks) {
  std::string text;
  for (const auto mark : marks)
    text += std::string(text.empty() ? "" : " ") + (mark == Mark::Public ? "public" : "private");
  return text;
}

}  // namespace

std::string lineText(const std::vector<Line>& lines) {
  std::string text;
  for (const auto& line : lines)
    text += timeText(line.time) + " pid " + std::to_string(line.pid) + " " + levelText(line.level) + " " +
            onOneLine(line.text) + "   [" + marksText(line.marks) + "]\n";
  return text;
}

std::string joined(const std::vector<std::string>& texts) {
  std::string all;
  for (const auto& text : texts)
    all += text + "\n";
  return all;
}

}  // namespace tamo::acceptance

#include "platform/log_text.hpp"

#include <algorithm>
#include <array>
#include <cstddef>

#include "values/fatal.hpp"

namespace tamo::platform {
namespace {

struct Format {
  LogLevel level;
  std::string_view text;
  LogPlaceholders placeholders;
};

#define TAMO_LOG_FORMAT(name, level, format) Format{LogLevel::level, format, logPlaceholders(format)},
constexpr std::array formats{TAMO_LOG_LINES(TAMO_LOG_FORMAT)};
#undef TAMO_LOG_FORMAT

const Format& entry(LogFormat format) {
  return formats.at(static_cast<std::size_t>(format));
}

/// The placeholder that the rest of a format begins with.
const LogPlaceholder& placeholderOf(std::string_view rest) {
  return *std::ranges::find_if(knownPlaceholders,
                               [rest](const auto& known) { return rest.starts_with(known.text); });
}

/// The same that the Mac's log shows. An argument of another kind is a mistake of the program's, and nothing
/// that a user could cause.
std::string shown(const LogArgument& argument, LogTakes takes) {
  if (const auto* text = std::get_if<std::string>(&argument); text != nullptr && takes == LogTakes::Text)
    return *text;
  if (const auto* number = std::get_if<std::int64_t>(&argument);
      number != nullptr && (takes == LogTakes::Int || takes == LogTakes::Long))
    return std::to_string(*number);
  if (const auto* truth = std::get_if<bool>(&argument); truth != nullptr && takes == LogTakes::Truth)
    return *truth ? "true" : "false";
  values::fatal("a log argument does not fit its format");
}

}  // namespace

LogLevel levelOf(LogFormat format) {
  return entry(format).level;
}

std::string_view formatText(LogFormat format) {
  return entry(format).text;
}

/// Every "%" of a format begins a known placeholder: that is looked at when the program is compiled.
std::vector<LogPiece> pieces(const LogLine& line) {
  const auto& format = entry(line.format);
  if (line.arguments.size() != format.placeholders.count) values::fatal("a log line does not fit its format");
  std::vector<LogPiece> result;
  auto rest = format.text;
  for (const auto& argument : line.arguments) {
    const auto start = rest.find('%');
    if (start != 0) result.push_back({LogPart::Fixed, std::string(rest.substr(0, start))});
    const auto& placeholder = placeholderOf(rest.substr(start));
    result.push_back({placeholder.part, shown(argument, placeholder.takes)});
    rest.remove_prefix(start + placeholder.text.size());
  }
  if (!rest.empty()) result.push_back({LogPart::Fixed, std::string(rest)});
  return result;
}

std::string shownText(const LogLine& line) {
  std::string text;
  for (const auto& piece : pieces(line)) {
    text += piece.part == LogPart::Private ? std::string("<private>") : piece.text;
  }
  return text;
}

}  // namespace tamo::platform

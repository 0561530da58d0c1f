#include "platform/log.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <utility>

#include "platform/fatal.hpp"

namespace tamo::platform {
namespace {

struct Format {
  LogLevel level;
  std::string_view text;
};

#define TAMO_LOG_FORMAT(name, level, format) Format{LogLevel::level, format},
constexpr std::array formats{TAMO_LOG_LINES(TAMO_LOG_FORMAT)};
#undef TAMO_LOG_FORMAT

const Format& entry(LogFormat format) {
  return formats.at(static_cast<std::size_t>(format));
}

struct Placeholder {
  std::string_view text;
  LogPiece::Kind kind;
  enum class Takes { Text, Integer, Truth } takes;
};

constexpr std::array placeholders{
    Placeholder{"%{public}s", LogPiece::Kind::Public, Placeholder::Takes::Text},
    Placeholder{"%{private}s", LogPiece::Kind::Private, Placeholder::Takes::Text},
    Placeholder{"%{public}ld", LogPiece::Kind::Public, Placeholder::Takes::Integer},
    Placeholder{"%{public}d", LogPiece::Kind::Public, Placeholder::Takes::Integer},
    Placeholder{"%{bool,public}d", LogPiece::Kind::Public, Placeholder::Takes::Truth},
};

constexpr auto findPlaceholder(std::string_view rest) {
  return std::ranges::find_if(placeholders, [rest](const auto& one) { return rest.starts_with(one.text); });
}

consteval bool allPlaceholdersAreKnown() {
  for (const auto& [level, format] : formats) {
    for (auto at = format.find('%'); at != std::string_view::npos; at = format.find('%', at + 1)) {
      if (findPlaceholder(format.substr(at)) == placeholders.end()) return false;
    }
  }
  return true;
}

static_assert(allPlaceholdersAreKnown());

std::string shown(const LogArgument& argument, Placeholder::Takes takes) {
  using Takes = Placeholder::Takes;
  if (const auto* text = std::get_if<std::string>(&argument); text != nullptr && takes == Takes::Text)
    return *text;
  if (const auto* number = std::get_if<std::int64_t>(&argument);
      number != nullptr && takes == Takes::Integer) {
    return std::to_string(*number);
  }
  if (const auto* truth = std::get_if<bool>(&argument); truth != nullptr && takes == Takes::Truth) {
    return *truth ? "true" : "false";
  }
  fatal("a log argument does not fit its format");
}

}  // namespace

LogLevel levelOf(LogFormat format) {
  return entry(format).level;
}

std::string_view formatText(LogFormat format) {
  return entry(format).text;
}

std::vector<LogPiece> pieces(const LogLine& line) {
  std::vector<LogPiece> result;
  std::string_view rest = formatText(line.format);
  for (const auto& argument : line.arguments) {
    const auto start = rest.find('%');
    if (start == std::string_view::npos) fatal("a log line has too many arguments");
    if (start > 0) result.push_back({LogPiece::Kind::Fixed, std::string(rest.substr(0, start))});
    const auto& placeholder = *findPlaceholder(rest.substr(start));
    result.push_back({placeholder.kind, shown(argument, placeholder.takes)});
    rest.remove_prefix(start + placeholder.text.size());
  }
  if (rest.contains('%')) fatal("a log line has too few arguments");
  if (!rest.empty()) result.push_back({LogPiece::Kind::Fixed, std::string(rest)});
  return result;
}

std::string shownText(const LogLine& line) {
  std::string text;
  for (const auto& piece : pieces(line)) {
    text += piece.kind == LogPiece::Kind::Private ? std::string("<private>") : piece.text;
  }
  return text;
}

}  // namespace tamo::platform

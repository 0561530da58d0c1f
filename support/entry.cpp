#include "support/entry.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>

#include "support/json_line.hpp"
#include "values/escaped_text.hpp"

namespace tamo::support {
namespace {

/// What `log` and `simctl` write around the entries. They are named because an unknown line is shown to the reader, and
/// one of these would stand in front of nearly every story.
constexpr std::array<std::string_view, 8> frames{
    "Timestamp  ", "Filtering the log data",     "Skipping info", "Skipping debug",
    "====",        "--------------------------", "Log      - ",   "getpwuid_r did not find",
};

std::optional<std::int64_t> number(std::string_view text) {
  std::int64_t value = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
  const bool whole = !text.empty() && read.ec == std::errc() && read.ptr == text.data() + text.size();
  return whole ? std::optional(value) : std::nullopt;
}

/// "Error", "E " and "error" are one level. Most styles spell it out, the compact one has two columns for it, and a
/// stage writes small letters.
Level levelNamed(std::string_view name) {
  if (name.starts_with("Er") || name.starts_with("E ") || name == "error") return Level::Error;
  if (name.starts_with("Fa") || name.starts_with("F ")) return Level::Fault;
  return name == "Df" || name == "Default" || name == "default" ? Level::Default : Level::Other;
}

/// Up to the next blank, and the blanks behind it.
std::string_view takeWord(std::string_view& rest) {
  const auto word = rest.substr(0, rest.find(' '));
  rest.remove_prefix(word.size());
  rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
  return word;
}

/// The message behind "[SUBSYSTEM:CATEGORY] ", which the sending library may precede in parentheses. Absent where the
/// entry is of another subsystem or of none. It counts in this place alone, and by its whole name: another program's
/// message may quote a line of the companion's, and another subsystem's name may begin with this one.
std::optional<std::string_view> messageOf(std::string_view rest) {
  if (rest.starts_with('(')) {
    const auto close = rest.find(") ");
    if (close == std::string_view::npos) return std::nullopt;
    rest.remove_prefix(close + 2);
  }
  const auto end = rest.find(']');
  if (!rest.starts_with('[') || end == std::string_view::npos) return std::nullopt;
  const auto channel = rest.substr(1, end - 1);
  if (channel.substr(0, channel.find(':')) != subsystem) return std::nullopt;
  rest.remove_prefix(end + 1);
  if (rest.starts_with(' ')) rest.remove_prefix(1);
  return rest;
}

/// Takes "NAME[PID" off the front, with what stands up to the closing bracket, and the blank behind it. A name may have
/// blanks in it, and brackets. The compact style has the thread behind the pid, the syslog style the pid alone.
std::optional<std::int64_t> takeProcess(std::string_view& rest) {
  for (auto open = rest.find('['); open != std::string_view::npos; open = rest.find('[', open + 1)) {
    const auto close = rest.find(']', open);
    if (close == std::string_view::npos) return std::nullopt;
    const auto inside = rest.substr(open + 1, close - open - 1);
    const auto pid = number(inside.substr(0, inside.find(':')));
    if (!pid) continue;
    rest.remove_prefix(close + 1);
    rest.remove_prefix(std::min(rest.find_first_not_of(": "), rest.size()));
    return pid;
  }
  return std::nullopt;
}

/// Of the styles of `log` ndjson alone marks where a message ends, and a stage escapes its line feeds; in the others a
/// message may go on in the next line.
Recognised product(const Moment& at, std::int64_t pid, Level level, std::string_view message, bool mayGoOn) {
  return {Kind::Product, Entry{at, pid, level, std::string(message), mayGoOn}};
}

/// "Df Tamo Core[812:4fa1] [SUBSYSTEM:CATEGORY] MESSAGE". The level is taken by its width: of one letter, the second
/// column is a blank.
Recognised compact(const Moment& at, std::string_view rest) {
  const auto level = levelNamed(rest.substr(0, 2));
  rest.remove_prefix(std::min<std::size_t>(3, rest.size()));
  const auto pid = takeProcess(rest);
  const auto message = pid ? messageOf(rest) : std::nullopt;
  return message ? product(at, *pid, level, *message, true) : Recognised{.kind = Kind::Foreign};
}

/// "localhost Tamo Core[812]: [SUBSYSTEM:CATEGORY] MESSAGE", which has no level.
Recognised syslog(const Moment& at, std::string_view rest) {
  takeWord(rest);
  const auto pid = takeProcess(rest);
  const auto message = pid ? messageOf(rest) : std::nullopt;
  return message ? product(at, *pid, Level::Default, *message, true) : Recognised{.kind = Kind::Foreign};
}

/// "0x4fa1     Default     0x0                  812    0    Tamo Core: [SUBSYSTEM:CATEGORY] MESSAGE"
Recognised ofNoStyle(const Moment& at, std::string_view rest) {
  takeWord(rest);
  const auto level = levelNamed(takeWord(rest));
  takeWord(rest);
  const auto pid = number(takeWord(rest));
  takeWord(rest);
  const auto name = rest.find(": ");
  const auto message =
      pid && name != std::string_view::npos ? messageOf(rest.substr(name + 2)) : std::nullopt;
  return message ? product(at, *pid, level, *message, true) : Recognised{.kind = Kind::Foreign};
}

/// The column up to the next tab, and the tab.
std::string_view takeColumn(std::string_view& rest) {
  const auto column = rest.substr(0, rest.find('\t'));
  rest.remove_prefix(std::min(column.size() + 1, rest.size()));
  return column;
}

/// Seven columns: the time, the pid, the level, the subsystem, the category, the text, and the text with its marks,
/// which a line that was cut has lost.
Recognised ofAStage(const Moment& at, std::string_view rest) {
  const auto pid = number(takeColumn(rest));
  const auto level = levelNamed(takeColumn(rest));
  const bool ours = takeColumn(rest) == subsystem;
  takeColumn(rest);
  const auto text = takeColumn(rest);
  if (!pid || !ours) return {.kind = Kind::Foreign};
  if (rest.empty()) return {.kind = Kind::Unknown};
  return product(at, *pid, level, values::unescaped(text), false);
}

/// An object that doesn't name the subsystem is not read at all. In the log of a whole system nearly all are such, and
/// searching one for the name is far less work than reading it.
Recognised ofAnObject(std::string_view line, bool marked) {
  if (!line.ends_with('}')) return {.kind = Kind::Unknown};
  if (!marked) return {.kind = line.starts_with("{\"count\":") ? Kind::Frame : Kind::Foreign};
  const auto object = logObject(line);
  if (!object) return {.kind = Kind::Unknown};
  // An activity may carry the subsystem and a text as well, and is no line of a log.
  const bool logged = object->event.empty() || object->event == "logEvent";
  if (object->subsystem != subsystem || !object->message || !logged) return {.kind = Kind::Foreign};
  std::string_view time = object->timestamp;
  const auto at = takeMoment(time);
  if (!at) return {.kind = Kind::Unknown};
  return product(*at, number(object->process).value_or(0), levelNamed(object->type), *object->message, false);
}

/// Whether a time may begin here, as cheaply as can be told.
bool mayBeTimed(std::string_view line) {
  return line.size() > 20 && line[4] == '-' && line[7] == '-' && line[13] == ':' && line[16] == ':';
}

/// The form is told for each line and not for a log, because nothing keeps anybody from putting two exports into one
/// file. Only a stage has a "T" and a tab; only the compact style has no zone; of the two that are left only the one
/// without a name begins with a thread.
Recognised timed(std::string_view line, const Moment& at, std::string_view rest) {
  if (line[10] == 'T' && rest.starts_with('\t')) return ofAStage(at, rest.substr(1));
  if (!rest.starts_with(' ')) return {.kind = Kind::Unknown};
  rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
  if (!at.zoneMinutes) return compact(at, rest);
  return rest.starts_with("0x") ? ofNoStyle(at, rest) : syslog(at, rest);
}

bool isFrame(std::string_view line) {
  return std::ranges::any_of(frames, [line](std::string_view frame) { return line.starts_with(frame); });
}

}  // namespace

Recognised recognised(std::string_view line, bool marked) {
  if (line.starts_with('{')) return ofAnObject(line, marked);
  if (!mayBeTimed(line)) return {.kind = isFrame(line) ? Kind::Frame : Kind::Unknown};
  if (!marked) return {.kind = Kind::Foreign};
  auto rest = line;
  const auto at = takeMoment(rest);
  return at ? timed(line, *at, rest) : Recognised{.kind = Kind::Unknown};
}

}  // namespace tamo::support

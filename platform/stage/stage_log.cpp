#include "platform/stage/stage_log.hpp"

#include <array>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

#include "platform/log_text.hpp"
#include "platform/posix/descriptor.hpp"
#include "platform/stage/onlooker.hpp"
#include "values/escaped_text.hpp"

namespace tamo::stage {
namespace {

using platform::LogPart;
using platform::LogPiece;
using values::escaped;

/// As a Mac's log names the two levels.
const char* levelName(platform::LogLevel level) {
  return level == platform::LogLevel::Error ? "error" : "default";
}

/// The marks tell a reader what would be private on a Mac, so a brace of the text itself is escaped.
std::string marked(const LogPiece& piece, PrivateTexts privateTexts) {
  auto text = escaped(piece.text, "{}");
  if (piece.part == LogPart::Fixed) return text;
  if (piece.part == LogPart::Public) return "{public:" + text + "}";
  return privateTexts == PrivateTexts::Shown ? "{private:" + text + "}" : "{private}";
}

class StageLogger final : public platform::Logger {
 public:
  StageLogger(const StageRoot& root, const platform::Clock& clock, const std::string& subsystem,
              const std::string& category)
      : root_(root), clock_(clock), channel_(escaped(subsystem) + "\t" + escaped(category)) {}

  /// The setting is read for every line, so that a rehearsal can have private texts shown from some moment on.
  void write(const platform::LogLine& line) override {
    const auto privateTexts =
        root_.setting("log-private") == "shown" ? PrivateTexts::Shown : PrivateTexts::Hidden;
    const std::string level = levelName(levelOf(line.format));
    const auto shown = shownColumn(line, privateTexts);
    append(logTime(clock_.wallNow()) + "\t" + pid_ + "\t" + level + "\t" + channel_ + "\t" + shown + "\t" +
           markedColumn(line, privateTexts) + "\n");
    // Shown even if the file has not taken it.
    showTo(STDERR_FILENO, level + " " + shown + "\n");
  }

 private:
  /// One write to the end, so that the lines of several processes stay whole.
  void append(const std::string& line) const {
    const auto path = root_.control("log");
    const platform::Descriptor log(::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666));
    if (log) static_cast<void>(::write(log.get(), line.data(), line.size()));
  }

  const StageRoot& root_;
  const platform::Clock& clock_;
  const std::string channel_;
  const std::string pid_ = std::to_string(::getpid());
};

}  // namespace

std::string shownColumn(const platform::LogLine& line, PrivateTexts privateTexts) {
  std::string text;
  for (const auto& piece : platform::pieces(line)) {
    const bool hidden = piece.part == LogPart::Private && privateTexts == PrivateTexts::Hidden;
    text += hidden ? "<private>" : escaped(piece.text);
  }
  return text;
}

std::string markedColumn(const platform::LogLine& line, PrivateTexts privateTexts) {
  std::string text;
  for (const auto& piece : platform::pieces(line))
    text += marked(piece, privateTexts);
  return text;
}

/// By hand, because the library here has no formats for dates.
std::string logTime(std::chrono::system_clock::time_point time) {
  using namespace std::chrono;
  const auto day = floor<days>(time);
  const year_month_day date(day);
  const hh_mm_ss clock(floor<milliseconds>(time - day));
  std::array<char, 64> text;
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ",
                static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                static_cast<int>(clock.minutes().count()), static_cast<int>(clock.seconds().count()),
                static_cast<int>(clock.subseconds().count()));
  return text.data();
}

std::unique_ptr<platform::Logger> StageLog::logger(const std::string& subsystem,
                                                   const std::string& category) {
  return std::make_unique<StageLogger>(root_, clock_, subsystem, category);
}

}  // namespace tamo::stage

#pragma once

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

#include "platform/stage/journal.hpp"
#include "stage/picture/journal_reading.hpp"
#include "stage/picture/picture_of.hpp"

namespace tamo::stage {

/// A journal written by hand: at a time in milliseconds, a process notes a word. The clock begins at an hour, so that no
/// time is taken for one since the action began.
class JournalBuilder {
 public:
  JournalBuilder& note(std::int64_t milliseconds, std::int32_t pid, std::string_view word,
                       const std::vector<std::string>& texts = {}) {
    bytes_ += journalLine(hour + milliseconds * 1000, pid, word, texts);
    return *this;
  }
  [[nodiscard]] const std::string& bytes() const { return bytes_; }
  [[nodiscard]] JournalReading reading() const { return readJournal(bytes_); }

  static constexpr std::int64_t hour = 3'600'000'000;

 private:
  std::string bytes_;
};

/// The restart of Core 50, which has the helper 51 and ignores SIGTERM, by companion 100. Launchd is 1, the next Core is
/// 60. The action begins at 1000 ms.
inline JournalBuilder hangingRestart() {
  JournalBuilder journal;
  journal.note(0, 1, "launchd")
      .note(10, 50, "core", {"50"})
      .note(11, 1, "job", {"50", "studio.pell.tamo.core"});
  journal.note(12, 51, "helper", {"50"}).note(13, 50, "says", {"is up"});
  journal.note(1000, 100, "companion", {"--core-action", "restart"}).note(1001, 100, "waits", {"400000"});
  journal.note(1401, 100, "goes-on").note(1402, 100, "lock", {"gained"});
  journal.note(1410, 101, "tool", {"launchctl", "print", "gui/501/x"});
  journal.note(1411, 100, "starts", {"101", "/bin/launchctl", "print", "gui/501/x"});
  journal.note(1412, 1, "asked", {"print", "gui/501/x"}).note(1413, 101, "leaves", {"0"});
  journal.note(1461, 100, "tool-ended", {"101", "0"});
  journal.note(1462, 100, "looks", {"50", "alive"}).note(1463, 100, "looks", {"100", "alive"});
  journal.note(1464, 100, "watches").note(1465, 100, "looks", {"50", "alive"});
  journal.note(1466, 100, "starts", {"103", "/bin/launchctl", "kickstart", "-k", "gui/501/x"});
  journal.note(1467, 103, "tool", {"launchctl", "kickstart", "-k", "gui/501/x"});
  journal.note(1468, 1, "asked", {"kickstart", "-k", "gui/501/x"});
  journal.note(1469, 1, "signals", {"15", "process", "50"}).note(1470, 50, "says", {"ignores SIGTERM"});
  journal.note(3464, 100, "looks", {"50", "alive"}).note(3465, 100, "signals", {"9", "group", "50"});
  journal.note(3466, 100, "looks", {"50", "dead"}).note(3467, 1, "signals", {"9", "group", "50"});
  journal.note(3475, 1, "reaped", {"50", "signal", "9"}).note(3476, 1, "reaped", {"51", "signal", "9"});
  journal.note(3485, 60, "core", {"60"}).note(3486, 1, "job", {"60", "studio.pell.tamo.core"});
  journal.note(3487, 103, "leaves", {"0"}).note(3488, 60, "says", {"is up"});
  journal.note(3516, 100, "looks", {"50", "none"}).note(3517, 100, "watched");
  journal.note(3518, 100, "tool-ended", {"103", "0"});
  journal.note(3519, 100, "log", {"default", "hardstop pid 50: killedGroup(50, gone: true)"});
  journal.note(3520, 100, "log", {"default", "restart -> status 1 ok Optional(true)"});
  journal.note(3521, 100, "writes", {"/Users/tamo/Library/Application Support/TamoPKG1/M2/100-core.json"});
  journal.note(3522, 100, "terminates");
  return journal;
}

/// The picture of a journal that has one.
inline Picture drawn(const JournalBuilder& journal, const Present& present = {}) {
  auto picture = pictureOf(journal.reading(), present);
  EXPECT_TRUE(picture.has_value());
  return picture.value_or(Picture());
}

/// The picture of that restart, drawn while its new Core runs.
inline Picture hanging() {
  return drawn(hangingRestart(), {.living = {1, 60}});
}

}  // namespace tamo::stage

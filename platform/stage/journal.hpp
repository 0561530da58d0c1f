#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/posix/descriptor.hpp"
#include "platform/stage/stage_root.hpp"

/// The journal of a stage: what happens on it, moment by moment and whoever does it, in the control room's file
/// "journal". It is there to be drawn (stage/picture) and steers nothing; a laid stage has one, and where there is none
/// nothing is noted. One line a moment, in one write:
///
///   MICROSECONDS <tab> PID <tab> WORD [<tab> TEXT]…
///
/// The time is that of the monotonic clock, which all processes of a machine share and nobody can set; the pid is
/// whose moment it is. In a text, a tab, a line break and a backslash are written as in the log (see stage_log.hpp),
/// and a long text is cut.
///
///   companion ARGUMENT…             a companion has begun
///   url URL…                        it was handed these
///   waits MICROSECONDS, goes-on     the main loop was asked to come back so much later; it does
///   lock gained|busy, unlocks       one try for a lock file; it lets go
///   starts PID PATH ARGUMENT…       it has started a tool; PID is 0 when that failed
///   tool-ended PID STATUS           it has seen that tool's end
///   looks PID alive|dead|none       it has looked at a process; dead is one that nobody has reaped
///   signals NUMBER process|group ID who signals whom; launchd and companions note it
///   watches, watched                a thread beside the main one begins; it ends
///   log LEVEL TEXT                  a log line, its private parts hidden whatever the settings say
///   writes PATH                     a whole file was written
///   trashes PATH                    an item went to the Trash
///   opens PATH, opened yes|no       an application is to be opened; what came of it
///   terminates                      the terminate request
///   launchd                         launchd has begun
///   asked WORD…                     launchd was asked
///   job PID LABEL                   launchd has started a job's process
///   errand PID                      launchd has started the administrator
///   reaped PID exited|signal NUMBER launchd has seen a process's end
///   core GROUP                      a Core has begun
///   helper CORE                     a helper of that Core has begun
///   says TEXT                       what a Core notes of itself
///   tool NAME ARGUMENT…             a tool has begun
///   leaves STATUS                   the process is about to end by itself
///   prompt TEXT, answer WORD        a prompt for a password is shown; it is answered
///   app PATH                        Tamo's own program has begun
///   told NUMBER PID                 a signal came to it, from that process
namespace tamo::stage {

class Journal {
 public:
  /// The file is opened here, once for all that copies of this note. What they note are moments of the process that
  /// made this; one that was forked off makes its own.
  explicit Journal(const StageRoot& root);

  /// Adds a moment. What cannot be written is lost; `errno` stays as it was. Any thread.
  void note(std::string_view word, const std::vector<std::string>& texts = {}) const;

 private:
  std::shared_ptr<const platform::Descriptor> file_;
  std::int32_t pid_;
};

/// A line of the journal with its line break.
[[nodiscard]] std::string journalLine(std::int64_t microseconds, std::int32_t pid, std::string_view word,
                                      const std::vector<std::string>& texts);

/// The text as it stands in the journal, and what it stood for. A text that was cut ends in "…".
[[nodiscard]] std::string journalText(std::string_view text);
[[nodiscard]] std::string textFromJournal(std::string_view text);

}  // namespace tamo::stage

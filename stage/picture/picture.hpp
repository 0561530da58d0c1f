#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// What a picture of a stage shows, before it is drawn in any form. All times are microseconds since the begin of the
/// action.
namespace tamo::stage {

enum class SpanKind {
  /// A process lives.
  Life,
  /// Somebody works at something.
  Step,
  /// Somebody waits because a rule says so, and how long at most.
  Wait,
  /// The job lock is held.
  Lock
};

struct Span {
  std::int64_t from = 0;
  std::int64_t until = 0;
  SpanKind kind = SpanKind::Life;
  std::string label{};
  /// It began before the picture does, or goes on where that ends.
  bool began = false;
  bool goesOn = false;
  /// Its end was noted by nobody; `until` is when it was last heard of.
  bool lost = false;
};

enum class MarkKind {
  /// An end of itself, or by a signal.
  End,
  Killed,
  /// A log line; the label is its letter.
  Log,
  /// A look at a process that finds it alive, or gone.
  Alive,
  Gone,
  /// Anything else that has a name.
  Moment
};

struct Mark {
  std::int64_t at = 0;
  MarkKind kind = MarkKind::Moment;
  std::string label{};
};

enum class RowKind { Steps, Lock, Watch, Log, Tool, Core, Helper, Launchd, Application, Companion };

struct Row {
  RowKind kind = RowKind::Steps;
  std::string name{};
  std::vector<Span> spans{};
  std::vector<Mark> marks{};
};

/// A signal, from a row to rows.
struct Arrow {
  std::int64_t at = 0;
  std::size_t from = 0;
  std::vector<std::size_t> to{};
  std::string signal{};
};

struct Told {
  std::int64_t at = 0;
  std::string text{};
};

struct Picture {
  std::string title{};
  std::int64_t until = 0;
  std::vector<Row> rows{};
  std::vector<Arrow> arrows{};
  /// What happened, in order, in words.
  std::vector<Told> told{};
  /// The sum, one line.
  std::string sum{};
  /// What about the journal keeps the picture from being whole.
  std::vector<std::string> remarks{};
};

/// "0.46 s", rounded down, so that no moment is told after a later one; with three places "0.459 s".
[[nodiscard]] std::string secondsText(std::int64_t microseconds, int places = 2);

/// Every moment that the picture shows something at, looks left out, in order, each once.
[[nodiscard]] std::vector<std::int64_t> shownMoments(const Picture& picture);

}  // namespace tamo::stage

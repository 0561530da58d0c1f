#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "acceptance/findings.hpp"
#include "acceptance/place.hpp"

/// A check that is being played: its place, what it has found, and the verbs that checks are written in.
namespace tamo::acceptance {

/// How thoroughly a set is played.
struct Terms {
  /// How often reseating is repeated.
  int repetitions = 20;
  /// How often the same is asked of a machine under load.
  int underLoad = 20;
};

/// A companion that was started and has not been waited for.
struct Going {
  int number = 0;
  std::int64_t since = 0;
  std::chrono::steady_clock::time_point began;
};

/// One that has ended.
struct Acted {
  /// All lines of companions since it was started.
  std::vector<Line> lines;
  std::chrono::milliseconds after{0};
  /// Why the lines could not be read; empty where they could.
  std::string unread{};
  /// The line that ended the action; empty without one.
  [[nodiscard]] std::string outcome() const;
};

class Scene {
 public:
  Scene(const Place& playedAt, Findings& findings, const Terms& agreed)
      : place(playedAt), see(findings), terms(agreed) {}

  const Place place;
  Findings& see;
  const Terms terms;

  /// Starts a companion and waits for its end, two minutes at most. Its lines are kept for the report.
  Acted act(const std::string& action, Copy copy = Copy::Installed);
  [[nodiscard]] Going begin(const Start& start);
  [[nodiscard]] Going begin(const std::string& action) {
    return begin({.arguments = {"--core-action", action}});
  }
  Acted finish(const Going& going);

  /// Waits until it is true, that long at most, and gives whether it is.
  [[nodiscard]] static bool eventually(const std::function<bool()>& isTrue,
                                       std::chrono::milliseconds within = std::chrono::seconds(15));
  static void pause(std::chrono::milliseconds time);

  /// The pid of the job as its print says it, waited for; 0 when there is none after 15 seconds.
  [[nodiscard]] pid_t core();
  [[nodiscard]] pid_t coreNow();
  [[nodiscard]] bool alive(pid_t pid) const;
  /// The pids of the helpers that the Core has told of, in its newest life.
  [[nodiscard]] std::vector<pid_t> helpers();
  /// Starts the Core anew, so that it behaves as ordered, and gives its pid.
  pid_t freshCore(const std::string& behaviour);
  /// Sends it to that process alone, and to nobody when there is none.
  static void signal(pid_t pid, int number);

  /// Judges that the companion left exactly the lines that the patterns tell ("*" is any text). This and the next one
  /// raise CannotArrange where the lines cannot be read.
  bool left(const Acted& acted, const std::vector<std::string>& patterns);
  /// Judges the line that ended the action.
  bool ended(const Acted& acted, const std::string& pattern);
  /// Judges that another Core runs in place of `before`, which is gone.
  bool replaced(pid_t before);
  /// Judges that the same Core runs.
  bool untouched(pid_t before);
};

/// How a Core is printed in the line about its hard stop.
[[nodiscard]] std::string hardStop(pid_t pid, const std::string& outcome);
/// The outcome line of a successful action of an agent that is enabled.
[[nodiscard]] std::string enabled(const std::string& action, const std::string& more = {});
/// The line that compares the definitions.
[[nodiscard]] std::string definition(const std::string& changed);

}  // namespace tamo::acceptance

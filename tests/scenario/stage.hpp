#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

#include "platform/stage/stage_root.hpp"
#include "stage/control/app_copy.hpp"

namespace tamo::scenario {

/// A companion process that has ended.
struct Ended {
  pid_t pid = 0;
  /// The exit status, or the number of the signal that ended it.
  int status = 0;
  std::chrono::milliseconds after{0};
};

/// A companion process that was started and has to be waited for.
struct Started {
  pid_t pid = 0;
  std::chrono::steady_clock::time_point at;
};

/// A laid stage with the installed copy, whose agent is registered and whose Core runs, in a directory of its
/// own. It is struck at the end, with everything that runs on it.
class Stage {
 public:
  struct Options {
    bool registered = true;
    /// How the Core behaves, from its first start on; see docs/rehearsing.md.
    std::string core = {};
    stage::Companion companion = stage::Companion::Shipped;
  };
  static inline const std::string label = "studio.pell.tamo.core";

  Stage();
  explicit Stage(const Options& options);
  ~Stage();
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;

  [[nodiscard]] const stage::StageRoot& root() const { return root_; }
  void set(std::string_view setting, std::string_view value) const { root_.set(setting, value); }
  [[nodiscard]] std::string target() const;

  /// Starts the companion of a copy with exactly these arguments; `open` is delivered before launching has
  /// finished.
  [[nodiscard]] Started start(const std::vector<std::string>& arguments,
                              const std::string& copy = "installed", const std::string& open = {}) const;
  /// The same without anything to open, with this descriptor for both of its outputs.
  [[nodiscard]] Started startWith(int output, const std::vector<std::string>& arguments,
                                  const std::string& copy = "installed") const;
  /// One that does not end within a minute and a half fails the test and is killed.
  static Ended finish(const Started& companion);
  /// Starts the installed copy's companion with one action and waits for its end.
  Ended act(const std::string& action) const { return finish(start({"--core-action", action})); }
  /// Sends URLs to a running companion, waiting until it takes them.
  void send(const Started& companion, const std::string& urls) const;

  /// Runs the stage's own launchctl, from outside any companion, and gives what it prints.
  std::string launchctl(const std::vector<std::string>& arguments) const;
  /// The pid of the job's process as launchctl prints it, waited for for up to two seconds; 0 when there is
  /// none.
  [[nodiscard]] pid_t corePid() const;
  /// The same without waiting.
  [[nodiscard]] pid_t corePidNow() const;

  /// What the companions logged, as "LEVEL TEXT" with every argument in its mark: "default {public:sync} ->
  /// …".
  [[nodiscard]] std::vector<std::string> lines() const;
  /// The bytes of the file at a stage path; absent when it cannot be read.
  [[nodiscard]] std::optional<std::string> file(const std::string& stagePath) const;
  [[nodiscard]] std::string dataDirectory() const;

 private:
  stage::StageRoot root_;
};

/// How the companion's log has what became of a Core, as `lines` gives it.
[[nodiscard]] std::string hardStopLine(pid_t pid, const std::string& outcome);

/// Whether a process with this pid is there and is no zombie.
[[nodiscard]] bool runs(pid_t pid);

/// Looks again and again until it is true, for half a minute at most.
[[nodiscard]] bool eventually(const std::function<bool()>& isTrue);

}  // namespace tamo::scenario

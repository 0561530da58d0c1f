#pragma once

#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

#include "scenario/stage.hpp"

namespace tamo::scenario {

inline const std::string installedPath = "/Applications/Tamo.app";
inline const std::string downloadedPath = "/Users/tamo/Downloads/Tamo.app";
inline const std::string trashPath = "/Users/tamo/.Trash";
inline const std::string resultFolder =
    "/Users/tamo/Library/Containers/studio.pell.Tamo/Data/Library/Application Support/Tamo";

/// Everything below a folder, by its path in it: kind, mode, size, times, bytes.
using Tree = std::map<std::string, std::string>;

/// A stage with a release copy of build 5000 in Downloads, marked as a download, and nothing installed.
class MoveStage {
 public:
  MoveStage();
  MoveStage(const MoveStage&) = delete;
  MoveStage& operator=(const MoveStage&) = delete;

  [[nodiscard]] const stage::StageRoot& root() const { return stage_.root(); }
  [[nodiscard]] const Stage& stage() const { return stage_; }

  void place(const stage::AppCopy& copy) const;
  void install(const std::string& build) const { place({.where = "installed", .build = build}); }

  /// Runs the move from a copy and waits for the companion's end.
  Ended move(const std::string& copy = "downloaded") const;
  [[nodiscard]] Started startMove(const std::string& copy = "downloaded") const;

  /// Starts a copy's own program as its user would, and gives its pid.
  [[nodiscard]] pid_t openTamo(const std::string& copy) const;
  static void quit(pid_t tamo);
  /// The pids of the programs that were started from the copy at this path, wherever it lies now.
  [[nodiscard]] std::vector<pid_t> tamosFrom(const std::string& path) const;

  /// The recorded result; "none" without one.
  [[nodiscard]] std::string result() const;
  /// The stage path of the application in front; "none" before any was opened.
  [[nodiscard]] std::string front() const;
  /// What was asked of the user and answered, without the times.
  [[nodiscard]] std::vector<std::string> prompts() const;
  /// The arguments of the last osascript.
  [[nodiscard]] std::vector<std::string> osascriptArguments() const;

  [[nodiscard]] bool exists(const std::string& path) const;
  /// The bundle version of the copy at a path; "none" when there is none.
  [[nodiscard]] std::string build(const std::string& path) const;
  [[nodiscard]] Tree tree(const std::string& path) const;
  /// The files below a path that carry the mark of a download.
  [[nodiscard]] int marked(const std::string& path) const;
  /// The builds of the copies in the Trash, by their names.
  [[nodiscard]] std::map<std::string, std::string> trash() const;

 private:
  Stage stage_{{.registered = false}};
};

/// The recorded result of a code.
[[nodiscard]] std::string resultOf(const std::string& code);
/// The log line of a code.
[[nodiscard]] std::string moveLine(const std::string& code);
inline const std::string refusedLine = "error move refused: this Tamo doesn't need moving";

}  // namespace tamo::scenario

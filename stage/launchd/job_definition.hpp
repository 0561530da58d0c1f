#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "values/property_list.hpp"

/// What a launchd property list says of a job, as far as the stage's launchd plays it. Pure; how a job runs
/// is the job table's business.
///
/// Known differences from a Mac: "KeepAlive" counts as a boolean only (a dictionary of conditions is taken
/// for false), and the keys that the stage doesn't know are ignored without a word.
namespace tamo::stage {

struct JobDefinition {
  std::string label;
  /// The stage path of the executable.
  std::string program;
  /// The executable's arguments, its own name first. Never empty.
  std::vector<std::string> arguments;
  /// Between SIGTERM and SIGKILL; zero waits for ever.
  std::chrono::seconds exitTimeout{5};
  /// A kept job starts at most once in this time.
  std::chrono::seconds throttle{10};
  bool keepAlive = false;
  bool runAtLoad = false;
  bool abandonProcessGroup = false;
  std::map<std::string, std::string> environment;
  /// The stage path of the property list.
  std::string path;
  /// The program as named relative to its bundle; absent when the list names it otherwise.
  std::optional<std::string> bundleProgram;
  /// Whether service management handed it to launchd, and no launchctl.
  bool submitted = false;
};

/// The definition in `list`, which lies at the stage path `path`. Absent when it has no label or no program,
/// or when a list of arguments holds anything but texts.
[[nodiscard]] std::optional<JobDefinition> jobDefinition(const values::PropertyList& list,
                                                         const std::string& path);

/// The bundle that holds the launch agent list at `path`: what stands before
/// "/Contents/Library/LaunchAgents/". Absent for a list that lies elsewhere.
[[nodiscard]] std::optional<std::string> bundleOfAgentList(std::string_view path);

}  // namespace tamo::stage

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/stage/stage_root.hpp"

/// Copies of the Tamo application on a stage: whole bundles, each with the companion, its launch agent and
/// both property lists, as they are shipped.
///
/// Known differences from a Mac: nothing is signed, and Tamo's own program is a stand-in that only runs.
namespace tamo::stage {

/// Which build of the companion a copy holds.
enum class Companion { Shipped, Receipts, Proof };

/// The bundled definition of the Core's agent.
struct AgentDefinition {
  /// Seconds; absent leaves the key out.
  std::optional<std::int64_t> exitTimeout = 20;
  /// What follows the program's path in the arguments.
  std::vector<std::string> arguments{};
  /// Write the list in its binary form.
  bool binary = false;
};

struct AppCopy {
  /// "installed", "staged", "downloaded", "linked", "translocated", or an absolute stage path. "linked" is a
  /// symbolic link to the installed copy and takes nothing else from here.
  std::string where = "installed";
  std::string bundleID = "studio.pell.Tamo";
  std::string build = "4211";
  Companion companion = Companion::Shipped;
  /// Every file carries the mark of a download, the attribute com.apple.quarantine.
  bool quarantined = false;
};

/// The stage path of the copy that is called `where`. Raises StageError for what is no such name.
[[nodiscard]] std::string copyPath(const StageRoot& root, const std::string& where);

/// The stage paths of the companion in the copy at the stage path `copy`, and of its program.
[[nodiscard]] std::string companionBundle(const std::string& copy);
[[nodiscard]] std::string companionProgram(const std::string& copy);

/// Places the copy, in place of what lies there. `programs` is the host folder that holds the stage's
/// programs and the companion's builds ("tamo-core", "tamo-core-receipts", "tamo-core-proof"). Raises
/// StageError before anything is changed when a program is missing there.
void placeCopy(const StageRoot& root, const std::string& programs, const AppCopy& copy);

/// Whether the system can tell where a translocated copy comes from.
enum class Original { Known, Unknown };

/// Makes a translocated copy of the copy at the stage path `path`, as a Mac does for a downloaded application
/// that is opened where it was unpacked, and gives its stage path. Each is a copy in the temporary directory,
/// where a Mac has a read-only view; the next one replaces it.
std::string translocateCopy(const StageRoot& root, const std::string& path, Original original);

/// Writes the agent's property list of the copy at the stage path `copy`, whole. Raises StageError when there
/// is no such copy.
void writeAgentDefinition(const StageRoot& root, const std::string& copy, const AgentDefinition& definition);

}  // namespace tamo::stage

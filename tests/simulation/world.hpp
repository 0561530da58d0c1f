#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "simulation/clocks.hpp"
#include "simulation/core_job.hpp"
#include "simulation/dice.hpp"
#include "simulation/faults.hpp"
#include "simulation/file_tree.hpp"
#include "simulation/plants.hpp"
#include "simulation/process_table.hpp"
#include "simulation/timeline.hpp"
#include "simulation/trace.hpp"
#include "simulation/verdict.hpp"

namespace tamo::simulation {

class Companion;
class Director;
struct RunningTool;

/// Where things are on the played Mac.
namespace Places {
inline constexpr std::string_view home = "/Users/u";
inline constexpr std::string_view proofHome = "/Users/proof";
inline constexpr std::string_view temporary = "/tmp/u/";
inline constexpr std::string_view dataInHome = "/Library/Application Support/Tamo/";
inline constexpr std::string_view installed = "/Applications/Tamo.app";
inline constexpr std::string_view staged = "/Users/u/Library/Application Support/Tamo/staged/Tamo.app";
inline constexpr std::string_view downloaded = "/Users/u/Downloads/Tamo.app";
inline constexpr std::string_view translocated = "/private/var/x/AppTranslocation/1/d/Tamo.app";
inline constexpr std::string_view development = "/Users/u/build/Tamo.app";
inline constexpr std::string_view linked = "/Users/u/Desktop/Tamo.app";
inline constexpr std::string_view trash = "/Users/u/.Trash/";
inline constexpr std::string_view helper = "/Contents/Library/LoginItems/Tamo Core.app";
inline constexpr std::string_view agentList = "/Contents/Library/LaunchAgents/studio.pell.tamo.core.plist";
inline constexpr std::string_view releaseID = "studio.pell.Tamo";
}  // namespace Places

struct RunningApp {
  std::optional<std::string> bundleID;
  std::optional<std::string> path;
};

/// Everything outside the companions: the played Mac of one run, and what the run is judged by.
struct World {
  World(Timeline& time, const Dice& thrown, Plant plant, bool traced);
  World(const World&) = delete;
  World& operator=(const World&) = delete;
  ~World();

  Timeline& timeline;
  Clocks clocks;
  const Plant planted;
  Dice dice;
  Trace trace;
  Verdict verdict;
  Faults faults;
  /// Null when chance says what fails.
  Director* director = nullptr;
  ProcessTable processes;
  CoreJob job;
  FileTree files;
  std::vector<std::unique_ptr<Companion>> companions;
  std::vector<RunningApp> applications;

  /// Where a translocated copy comes from; absent when the system cannot tell.
  std::optional<std::string> original;
  bool applicationsWritable = true;
  /// How the administrator's prompt is answered: 0 closed, 1 refused, 2 allowed. Absent when chance says so.
  std::optional<std::uint64_t> administrator;
  /// Every tool that was started.
  std::vector<std::weak_ptr<RunningTool>> tools;
  /// Files that tools may write to, by descriptor.
  std::map<int, std::string> descriptors;
  int nextDescriptor = 10;
  int trashedItems = 0;
  Companion* lockHolder = nullptr;
  std::map<int, Companion*> lockDescriptors;
  /// The call, of all companions together, at which the machine sleeps, and for how long. 0: at none.
  std::uint64_t sleepsAtCall = 0;
  Time sleepsFor{0};
  std::uint64_t calls = 0;
  /// When the last companion so far ended.
  Time lastEnd{0};
  /// Something cut a copy short or left the rest of one: a mover was killed, could not clean up, or went
  /// without the lock.
  bool copiesDisturbed = false;
  /// What is not judged in a run that was so disturbed: a part of a copy that is left in the end, or after a move that
  /// told how it went; and a time at which the only whole copies were in the Trash.
  int partsLeft = 0;
  int partsTold = 0;
  bool onlyInTrash = false;
  int copiesAtFirst = 0;
  /// Signals that came too late: a slow call lay between the last look and the signal, and the process had
  /// changed meanwhile.
  int lateSignals = 0;
  /// Those of them that hit another process under the old pid.
  int strangersHit = 0;
  /// Cores killed after a grace of which the machine slept through a part, and locks given up after such a
  /// wait: the clock went on, and whoever was waited for stood still.
  int gracesSleptThrough = 0;
  int locksSleptThrough = 0;
  /// Cores that a clock which was set made look younger or older than they are.
  int sparedThoughOld = 0;
  int killedThoughYoung = 0;
  /// Losses of the last copy because a look at the destination failed.
  int overlooked = 0;

  /// Whether a whole copy of the application lies there.
  [[nodiscard]] bool isWhole(std::string_view app) const;
  void placeCopy(std::string_view app, std::string_view bundleID, std::string_view version,
                 std::size_t definition);
  /// Whole release copies, in the Trash or elsewhere.
  [[nodiscard]] int wholeCopies(bool withTrash) const;
  void sleepMachine(Time duration);
  void setWallClock(Time by);
};

/// Puts copies, files, the agent, applications and coming events into an empty world, as the dice say.
void furnish(World& world);

}  // namespace tamo::simulation

#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/error.hpp"
#include "platform/kernel_processes.hpp"
#include "platform/log.hpp"
#include "simulation/clocks.hpp"
#include "simulation/faults.hpp"
#include "simulation/job_texts.hpp"

namespace tamo::simulation {

/// One look at a process: what was asked and what the answer was.
struct Look {
  std::int32_t pid = 0;
  std::optional<platform::ProcessInfo> told;
  Time at{0};
  /// How much slow calls had held the companion up by then.
  Time slow{0};
};

/// One hard stop as seen from outside, from the start of its watcher.
struct StopRecord {
  Look first;
  Moment from;
  Time slowBefore{0};
  /// Whether it was told of a home, and so of a data directory.
  bool homeKnown = true;
  /// CFBundleVersion of the application around the companion, as it was told.
  std::optional<std::string> version;
  std::optional<std::uint64_t> ownStartMicros;
  /// Whether the watched process really started after the companion; absent when it was gone by then.
  std::optional<bool> younger;
  Look last;
  /// When the watcher had asked for the markers, and when it signalled.
  std::optional<Time> decidedAt;
  std::optional<Time> signalledAt;
  /// Looks after the time of the wait that they belong to.
  int lateLooks = 0;
  /// Some look, if not the last, found the process gone: a look can fail.
  bool onceGone = false;
  std::size_t markersAsked = 0;
  /// A marker file that the watcher was told of.
  bool markerTold = false;
  int signals = 0;
  std::int32_t target = 0;
  bool toGroup = false;
  /// When the companion was told that the stop request had failed.
  std::optional<Time> failedAt;
  bool ended = false;
  bool noted = false;
};

/// How often a companion looked at a file, before its action or in it.
struct Looks {
  /// The Info.plist of its own copy.
  int infos = 0;
  int resolutions = 0;
  /// The agent list of its own bundle.
  int lists = 0;
  int destinations = 0;
};

/// A tool, and what the companion learned of its end; -1 when it did not start or was given up.
struct StartedTool {
  std::optional<std::int32_t> status;
};

/// What one companion did and was told, as its calls to the platform show it. The referee judges by this and
/// by the state of the world.
struct Record {
  std::bitset<callCount> struck;
  Time slow{0};

  // Intake.
  std::optional<std::string> requested;
  /// What is carried out when nothing is requested.
  std::string otherwise;
  bool launched = false;
  bool dispatched = false;
  Time launchedAt{0};

  // What it was told.
  std::vector<std::int64_t> statuses;
  std::optional<platform::Error> lastError;
  std::optional<std::int32_t> kickstart;
  std::optional<std::string> infoID;
  bool homeKnown = true;
  /// The two above as they were when the guard, or the move, asked for the first time.
  std::optional<std::string> judgedID;
  bool judgedHomeKnown = true;
  bool judged = false;
  std::optional<std::string> infoVersion;
  /// What its own bundle's agent list said when it was read; another's move may change the bundle afterwards.
  std::optional<std::size_t> bundledDefinition;
  /// What the move was told of the destination.
  std::optional<bool> destinationExists;
  std::optional<std::string> destinationVersion;
  /// Whether the copy that is moved was running at the last look.
  bool oldCopyRuns = false;
  std::optional<Look> lastLook;
  std::optional<std::uint64_t> ownStartMicros;

  /// Where the copy that is moved was told to come from.
  std::optional<std::string> originalTold;
  std::size_t socketsTried = 0;
  bool socketAnswered = false;
  /// What the last print of the job told, when it came as launchctl makes it.
  std::optional<PrintTold> print;
  /// How many hard stops had been begun by then.
  std::size_t stopsBeforePrint = 0;
  /// The hard stops whose watcher found no thread; they are not among `stops`.
  std::size_t unwatchedStops = 0;
  [[nodiscard]] std::size_t begunStops() const { return stops.size() + unwatchedStops; }

  /// What the move was told of the folder of the destination.
  std::optional<bool> folderWritable;

  // What it did.
  Looks looks;
  std::vector<StartedTool> tools;
  /// A letter for each of them.
  std::string toolCourse;
  int registrations = 0;
  int unregistrations = 0;
  int kickstarts = 0;
  int settingsOpened = 0;
  int copies = 0;
  int trashed = 0;
  int opened = 0;
  bool printed = false;
  bool unregisterFailed = false;
  bool definitionChanged = false;
  std::vector<StopRecord> stops;

  // The lock.
  bool lockAsked = false;
  std::optional<Moment> lockFirstTried;
  int lockTries = 0;
  int lateTries = 0;
  Time lockSlowBefore{0};
  bool lockHeld = false;
  bool lockHeldOnce = false;
  bool lockGivenUp = false;
  /// It ended its main loop without having let the lock go.
  bool leftLocked = false;

  // Waits for what is not in the companion's hands.
  Time waitedForTools{0};
  Time waitedForAnswers{0};
  int launchctls = 0;

  // What it told.
  std::vector<platform::LogLine> lines;
  std::optional<std::string> stopText;
  std::optional<std::string> receipt;
  bool receiptDenied = false;
  std::optional<std::string> moveResult;
  std::optional<Time> recordedAt;
  Time recordedWall{0};
  Time recordedSlow{0};
  int terminations = 0;
};

}  // namespace tamo::simulation

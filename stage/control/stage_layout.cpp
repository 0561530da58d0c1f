#include "stage/control/stage_layout.hpp"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <sys/socket.h>
#include <thread>

#include "platform/posix/byte_stream.hpp"
#include "platform/stage/background_program.hpp"
#include "platform/stage/launchd_wire.hpp"
#include "platform/stage/stream_sockets.hpp"
#include "stage/common/rights.hpp"
#include "stage/common/stage_census.hpp"
#include "stage/common/stage_error.hpp"
#include "stage/control/app_copy.hpp"

namespace tamo::stage {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr auto homeFolder = "/Users/tamo";

/// What is played, and under which name it lies where.
struct PlacedProgram {
  const char* name;
  const char* place;
};
constexpr PlacedProgram placedPrograms[] = {{"stage-launchd", "sbin/launchd"},
                                            {"stage-launchctl", "bin/launchctl"},
                                            {"stage-administrator", "usr/libexec/administrator"},
                                            {"stage-ditto", "usr/bin/ditto"},
                                            {"stage-xattr", "usr/bin/xattr"},
                                            {"stage-osascript", "usr/bin/osascript"}};

void must(const std::error_code& error, const std::string& what) {
  if (error) throw StageError(what + ": " + error.message());
}

/// The folders that a Mac has from the beginning, and the links that lead into /private. The user's temporary
/// directory is closed to others, as a Mac's is.
void makeFolders(const fs::path& root) {
  std::error_code error;
  for (const auto* folder :
       {"Applications", "bin", "sbin", "usr/bin", "usr/libexec", "Library/LaunchAgents", "Users/tamo/Desktop",
        "Users/tamo/Downloads", "Users/tamo/Library/Application Support", "private/tmp",
        "private/var/folders/st/tamo/T", ".stage/settings", ".stage/companions", ".stage/services"}) {
    fs::create_directories(root / folder, error);
    must(error, std::string("cannot make the folder ") + folder);
  }
  fs::permissions(root / "private/var/folders/st/tamo/T", fs::perms::owner_all, error);
  must(error, "cannot close the temporary directory to others");
  for (const auto* link : {"tmp", "var"}) {
    // Relative, so that the machine's own kernel stays on the stage when it follows one.
    fs::create_directory_symlink(fs::path("private") / link, root / link, error);
    must(error, std::string("cannot link ") + link);
  }
}

/// Each stage has copies of its own, so that a rehearsal can put another program in the place of one.
void copyPrograms(const fs::path& root, const fs::path& programs) {
  for (const auto& program : placedPrograms) {
    std::error_code error;
    const auto from = programs / program.name;
    fs::copy_file(from, root / program.place, error);
    must(error, "cannot copy " + from.string());
  }
}

/// A directory with something in it may be anybody's, and striking the stage removes everything.
fs::path freshDirectory(const std::string& directory) {
  std::error_code error;
  fs::create_directories(directory, error);
  must(error, "cannot make " + directory);
  if (!fs::is_empty(directory, error) || error) throw StageError(directory + " is not empty");
  return fs::canonical(directory);
}

/// Any answer is one; this question is the one that changes nothing.
bool answers(const StageRoot& root) {
  return askLaunchd(root, {"print", "gui/" + std::to_string(root.userID())}).has_value();
}

/// False when it is not true by then.
template <class Condition>
bool comesTrue(Condition condition, std::chrono::milliseconds within) {
  const auto end = std::chrono::steady_clock::now() + within;
  while (!condition()) {
    if (std::chrono::steady_clock::now() >= end) return false;
    std::this_thread::sleep_for(5ms);
  }
  return true;
}

/// Waits for the answer, but not for ever: a launchd that is gone or stuck is ended with all the rest.
void shutDownLaunchd(const StageRoot& root) {
  const auto socket = connectedTo(root.control("launchd.sock"));
  if (!socket || !platform::writeAll(socket.get(), bytesOf({"shutdown"}))) return;
  pollfd answer = {.fd = socket.get(), .events = POLLIN, .revents = 0};
  ::poll(&answer, 1, 5000);
}

/// Launchd ends what it started; the rest was started from outside and is killed one by one. Asked again until none is
/// left, since what is killed may have started something a moment before.
bool nothingRuns(const StageRoot& root) {
  const auto left = processesOfStage(root.directory());
  for (const auto& process : left)
    ::kill(process.pid, SIGKILL);
  return left.empty();
}

}  // namespace

StageRoot layStage(const Laying& laying) {
  const auto root = freshDirectory(laying.directory);
  makeFolders(root);
  // From here on it can be struck.
  std::ofstream(root / ".stage/laid")
      << "A stage of Tamo Core Companion. Strike it with tamo-stage strike.\n";
  // An empty journal: where there is none, nobody notes anything.
  std::ofstream(root / ".stage/journal").flush();
  copyPrograms(root, laying.programs);
  StageRoot stage(root.string());
  stage.set("home", homeFolder);
  if (!laying.bare) placeCopy(stage, laying.programs, {});
  startLaunchd(stage);
  return stage;
}

/// Launchd first, because it would start anew what is killed.
void strikeStage(const std::string& directory) {
  const auto stage = stageAt(directory);
  shutDownLaunchd(stage);
  // A folder that its owner may not write to cannot be emptied either.
  if (stage.existing("/Applications")) openApplications(stage);
  if (!comesTrue([&] { return nothingRuns(stage); }, 10s))
    throw StageError("something on " + stage.directory() + " doesn't end");
  std::error_code error;
  fs::remove_all(stage.directory(), error);
  must(error, "cannot remove " + stage.directory());
}

/// The mark keeps a slip of the hand from striking a directory that is no stage.
StageRoot stageAt(const std::string& directory) {
  std::error_code error;
  if (!fs::is_regular_file(fs::path(directory) / ".stage/laid", error))
    throw StageError(directory + " is no stage");
  return StageRoot(directory);
}

std::string ownProgramFolder() {
  std::error_code error;
  const auto program = fs::read_symlink("/proc/self/exe", error);
  must(error, "cannot find the own program");
  return program.parent_path().string();
}

/// Until it answers, and not only runs: the caller's first question would find no socket otherwise.
void startLaunchd(const StageRoot& root) {
  if (answers(root)) return;
  const bool started = startInBackground({.program = root.host("/sbin/launchd"),
                                          .environment = {"TAMO_STAGE=" + root.directory()},
                                          .log = root.control("launchd.log")});
  if (!started) throw StageError("cannot start launchd on " + root.directory());
  if (!comesTrue([&] { return answers(root); }, 10s))
    throw StageError("launchd doesn't answer; see " + root.control("launchd.log"));
}

}  // namespace tamo::stage

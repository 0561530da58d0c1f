#include "soak/crowd_rounds.hpp"

#include <algorithm>
#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "platform/posix/posix_files.hpp"
#include "soak/overlaps.hpp"
#include "soak/witness.hpp"

namespace tamo::soak {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

/// The wait for the lock, 60 s, and an action.
constexpr milliseconds longestWait(75'000);
const std::string lockFolder = "/private/var/folders/st/tamo/T";
const std::string lockFile = lockFolder + "/studio.pell.tamo.core.job.lock";

/// A disturbance of the lock's file or folder; true when two may work at once from then on, because a lock
/// belongs to the file that was opened, or because without a file nobody waits.
struct Way {
  std::string name;
  bool allowsOverlaps;
  void (*disturb)(const std::string& lock, const std::string& folder);
};

void replace(const std::string& path) {
  ::unlink(path.c_str());
  std::ofstream(path).flush();
}

const std::array<Way, 6> disturbances = {{
    {"lock file removed and made anew", true,
     [](const std::string& lock, const std::string&) { replace(lock); }},
    {"lock file replaced by a link", true,
     [](const std::string& lock, const std::string&) {
       ::unlink(lock.c_str());
       static_cast<void>(!::symlink("/private/tmp/elsewhere", lock.c_str()));
     }},
    {"lock file replaced by a folder", true,
     [](const std::string& lock, const std::string&) {
       ::unlink(lock.c_str());
       ::mkdir(lock.c_str(), 0700);
     }},
    {"temporary folder removed", true,
     [](const std::string&, const std::string& folder) {
       std::error_code ignored;
       fs::remove_all(folder, ignored);
     }},
    {"temporary folder replaced", true,
     [](const std::string&, const std::string& folder) {
       std::error_code ignored;
       fs::rename(folder, folder + ".old", ignored);
       fs::create_directory(folder, ignored);
     }},
    {"lock file written to", false,
     [](const std::string& lock, const std::string&) { std::ofstream(lock) << "something"; }},
}};

}  // namespace

std::size_t CrowdRounds::ways() {
  return disturbances.size();
}

CrowdRounds::CrowdRounds(Tally& tally, Chance& chance) : tally_(tally), chance_(chance) {
  const auto launchctl = stage_.root().host("/bin/launchctl");
  fs::rename(launchctl, launchctl + ".real");
  fs::copy_file(TAMO_BINARY_DIR "/bin/soak-crowd-tool", launchctl);
}

CrowdRounds::Crowd CrowdRounds::gather(int size) const {
  ::unlink(stage_.root().control("crowd").c_str());
  Crowd crowd;
  for (int i = 0; i < size; ++i)
    crowd.companions.push_back(stage_.start({"--core-action", i % 4 == 0 ? "register" : "sync"}));
  return crowd;
}

void CrowdRounds::see(Crowd& crowd, int killedInHundred, int span) {
  struct One {
    pid_t pid;
    Clock::time_point killAt;
  };
  std::vector<One> left;
  const auto begun = Clock::now();
  for (const auto& companion : crowd.companions) {
    const bool doomed = chance_.between(1, 100) <= killedInHundred;
    left.push_back({companion.pid, begun + (doomed ? chance_.milliseconds(0, span) : longestWait)});
  }
  while (!left.empty()) {
    std::erase_if(left, [&](const One& one) {
      if (Clock::now() >= one.killAt) {
        crowd.killed.try_emplace(one.pid, Clock::now().time_since_epoch().count());
        ::kill(one.pid, SIGKILL);
      }
      const bool late = Clock::now() >= begun + longestWait;
      int status = 0;
      if (::waitpid(one.pid, &status, late ? 0 : WNOHANG) == 0) return false;
      const bool hit = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
      if (late) ++crowd.stuck;
      // It was done before the signal came.
      if (!hit) crowd.killed.erase(one.pid);
      if (!hit && status != 0) ++crowd.crashed;
      return true;
    });
    std::this_thread::sleep_for(milliseconds(1));
  }
  tally_.greatest("longest crowd, ms",
                  std::chrono::duration_cast<milliseconds>(Clock::now() - begun).count());
}

int CrowdRounds::take(const std::string& round, const Crowd& crowd) {
  const auto notes = platform::posix::readWhole(stage_.root().control("crowd")).value_or("");
  const auto account = crowdAccount(notes, crowd.killed);
  tally_.count(round + ": companions that worked on the job", account.worked);
  tally_.count(round + ": overlaps", account.overlaps);
  return account.overlaps;
}

void CrowdRounds::runClean(const std::string& round) {
  const auto clean = stage_.act("sync");
  tally_.greatest("longest clean run after a crowd, ms", clean.after.count());
  if (clean.status != 0) tally_.wrong(round + ": a clean run ended with " + std::to_string(clean.status));
  if (clean.after > milliseconds(5000)) tally_.wrong(round + ": a clean run had to wait");
}

void CrowdRounds::killedCrowd() {
  const std::string round = "crowd of 64";
  auto crowd = gather(64);
  see(crowd, 50, 4000);
  tally_.count(round + ": companions started", 64);
  tally_.count(round + ": companions killed", static_cast<std::int64_t>(crowd.killed.size()));
  if (crowd.stuck > 0) tally_.wrong(round + ": " + std::to_string(crowd.stuck) + " were stuck");
  if (crowd.crashed > 0) tally_.wrong(round + ": " + std::to_string(crowd.crashed) + " crashed");
  if (const int overlaps = take(round, crowd); overlaps > 0)
    tally_.wrong(round + ": " + std::to_string(overlaps) + " overlaps");
  runClean(round);
}

void CrowdRounds::disturbedCrowd(std::size_t number) {
  const auto& way = disturbances.at(number % ways());
  const auto& root = stage_.root();
  // The work takes long enough for the disturbance to come in its midst.
  stage_.set("tool-launchctl", "* slow 60");
  auto crowd = gather(8);
  std::this_thread::sleep_for(chance_.milliseconds(380, 700));
  way.disturb(root.host(lockFile), root.host(lockFolder));
  for (int i = 0; i < 8; ++i)
    crowd.companions.push_back(stage_.start({"--core-action", "sync"}));
  see(crowd, 0, 1);
  tally_.count(way.name + ": companions started", 16);
  if (crowd.stuck > 0) tally_.wrong(way.name + ": " + std::to_string(crowd.stuck) + " were stuck");
  if (crowd.crashed > 0) tally_.wrong(way.name + ": " + std::to_string(crowd.crashed) + " crashed");
  const int overlaps = take(way.name, crowd);
  if (overlaps > 0 && !way.allowsOverlaps)
    tally_.wrong(way.name + ": " + std::to_string(overlaps) + " overlaps");
  if (stage_.corePid() == 0) tally_.wrong(way.name + ": the Core is gone");
  fs::remove_all(root.host(lockFolder));
  fs::remove_all(root.host(lockFolder) + ".old");
  fs::create_directories(root.host(lockFolder));
  stage_.set("tool-launchctl", "");
  runClean(way.name);
}

void CrowdRounds::canary() {
  const auto lock = stage_.root().host(lockFile);
  ::unlink(lock.c_str());
  static_cast<void>(!::symlink("/private/tmp/elsewhere", lock.c_str()));
  auto crowd = gather(16);
  see(crowd, 0, 1);
  if (const int overlaps = take("canary", crowd); overlaps > 0)
    tally_.wrong("canary: " + std::to_string(overlaps) + " overlaps");
}

}  // namespace tamo::soak

#include "soak/move_rounds.hpp"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <sys/wait.h>
#include <thread>
#include <vector>

#include "soak/witness.hpp"
#include "stage/common/stage_census.hpp"

namespace tamo::soak {
namespace {

namespace fs = std::filesystem;
using scenario::downloadedPath;
using scenario::installedPath;
using scenario::trashPath;
using std::chrono::milliseconds;

/// How many there were to be ended.
int endTools(pid_t companion) {
  int ended = 0;
  for (const auto tool : stage::childrenOf(companion))
    if (::kill(tool, SIGKILL) == 0) ++ended;
  return ended;
}

std::string textOf(Destination destination) {
  const std::string texts[] = {"absent", "whole", "still of the old build", "unfinished"};
  return texts[static_cast<std::size_t>(destination)];
}

}  // namespace

void MoveRounds::endTamos() const {
  for (const auto& process : stage::processesOfStage(stage_.root().directory()))
    if (process.command.ends_with("/MacOS/Tamo")) ::kill(process.pid, SIGKILL);
}

void MoveRounds::reset(bool replaces) {
  endTamos();
  const auto& root = stage_.root();
  for (const auto& path : {installedPath, downloadedPath, trashPath, scenario::resultFolder})
    fs::remove_all(root.host(path));
  stage_.place({.where = "downloaded", .build = "5000", .quarantined = true});
  if (replaces) stage_.install("4999");
  downloaded_ = stage_.tree(downloadedPath);
  older_ = replaces ? std::optional(stage_.tree(installedPath)) : std::nullopt;
}

/// Half of the moments are in the copy itself: soon after the destination has appeared with something in it.
void MoveRounds::disturb(const scenario::Started& companion, Victim victim) {
  if (victim == Victim::Nobody) return;
  const auto limit = companion.at + milliseconds(3000);
  if (chance_.half()) {
    std::this_thread::sleep_until(companion.at + milliseconds(chance_.between(380, 600)));
  } else {
    const auto begun = stage_.root().host(installedPath + "/Contents");
    while (Clock::now() < limit && !fs::exists(begun))
      std::this_thread::sleep_for(std::chrono::microseconds(200));
    std::this_thread::sleep_for(std::chrono::microseconds(chance_.between(0, 25'000)));
  }
  // The companion first: otherwise it would see its tool fail and tidy up.
  if (victim != Victim::Tool) ::kill(companion.pid, victim == Victim::Both ? SIGSTOP : SIGKILL);
  if (victim != Victim::Companion) tally_.count("tools really killed in a move", endTools(companion.pid));
  if (victim == Victim::Both) ::kill(companion.pid, SIGKILL);
}

/// A tool whose companion was killed goes on, and may finish what it began; on a busy machine it takes its time.
/// One that is between its start and its exec may be missed by a look, so two in a row have to find none.
void MoveRounds::waitForQuiet() const {
  for (int attempt = 0, quietLooks = 0; attempt < 6000; ++attempt) {
    const auto processes = stage::processesOfStage(stage_.root().directory());
    const bool quiet = std::ranges::all_of(processes, [](const auto& one) {
      return one.command.contains("launchd") || one.command.ends_with("/MacOS/Tamo");
    });
    quietLooks = quiet ? quietLooks + 1 : 0;
    if (quietLooks == 2) return;
    std::this_thread::sleep_for(milliseconds(10));
  }
}

void MoveRounds::finish(const scenario::Started& companion, const std::string& round) {
  const auto limit = Clock::now() + milliseconds(45'000);
  int status = 0;
  while (::waitpid(companion.pid, &status, WNOHANG) == 0) {
    if (Clock::now() > limit) {
      tally_.wrong(round + ": the companion hung");
      ::kill(companion.pid, SIGKILL);
    }
    std::this_thread::sleep_for(milliseconds(1));
  }
  if (WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) tally_.count("companions really killed in a move");
  if (WIFSIGNALED(status) && WTERMSIG(status) != SIGKILL) tally_.wrong(round + ": the companion crashed");
}

bool MoveRounds::keptSomewhere(const scenario::Tree& tree) const {
  if (stage_.tree(downloadedPath) == tree || stage_.tree(installedPath) == tree) return true;
  return std::ranges::any_of(
      stage_.trash(), [&](const auto& item) { return stage_.tree(trashPath + "/" + item.first) == tree; });
}

void MoveRounds::judgeLoss(const std::string& round) {
  if (!keptSomewhere(downloaded_)) tally_.wrong(round + ": the moved copy is lost");
  if (older_ && !keptSomewhere(*older_)) tally_.wrong(round + ": the replaced copy is lost");
}

Destination MoveRounds::destination() const {
  const bool there = stage_.exists(installedPath);
  return destinationOf(there ? std::optional(stage_.tree(installedPath)) : std::nullopt, downloaded_, older_);
}

void MoveRounds::moveAgain(const std::string& round, Victim victim) {
  const auto before = destination();
  const bool unfinished = before == Destination::Unfinished;
  tally_.count("destinations " + textOf(before) + " after a disturbed move");
  if (unfinished && victim != Victim::Both) tally_.wrong(round + ": the destination is unfinished");
  if (stage_.exists(downloadedPath)) finish(stage_.startMove(), round);
  waitForQuiet();
  judgeLoss(round);
  if (destination() == Destination::Whole) return tally_.count("destinations whole after the second move");
  if (unfinished)
    return tally_.count("destinations unfinished after the second move, companion and tool both killed");
  tally_.wrong(round + ": after the second move the destination is not whole, " + stage_.result());
}

void MoveRounds::round() {
  const std::string names[] = {"nobody", "companion", "tool", "companion and tool"};
  const int pick = chance_.between(0, 3);
  const bool replaces = chance_.half();
  const auto round = "move, " + names[pick] + " killed" + (replaces ? ", replacing" : "");
  reset(replaces);
  tally_.count("moves with " + names[pick] + " to be killed");
  const auto companion = stage_.startMove();
  disturb(companion, static_cast<Victim>(pick));
  finish(companion, round);
  waitForQuiet();
  judgeLoss(round);
  moveAgain(round, static_cast<Victim>(pick));
}

void MoveRounds::canary() {
  reset(false);
  const auto companion = stage_.startMove();
  finish(companion, "canary");
  waitForQuiet();
  for (const auto& path : {installedPath, downloadedPath, trashPath})
    fs::remove_all(stage_.root().host(path));
  judgeLoss("canary");
}

}  // namespace tamo::soak

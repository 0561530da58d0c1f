#include "faults/death_rules.hpp"

#include <algorithm>
#include <array>
#include <variant>

#include "simulation/receipt_text.hpp"
#include "simulation/world.hpp"

namespace tamo::faults {
namespace {

namespace Places = simulation::Places;
using platform::LogFormat;

constexpr std::string_view receipts = "/Users/u/Library/Application Support/TamoPKG1/M2/";
constexpr std::string_view moveResult =
    "/Users/u/Library/Containers/studio.pell.Tamo/Data/Library/Application "
    "Support/Tamo/move-to-applications.json";
constexpr std::string_view homelessResult =
    "/var/empty/Library/Containers/studio.pell.Tamo/Data/Library/Application "
    "Support/Tamo/move-to-applications.json";
constexpr std::string_view lockFile = "/tmp/u/studio.pell.tamo.core.job.lock";
constexpr std::array markers{"/Users/u/Library/Application Support/Tamo/core.db.revert.pending",
                             "/Users/proof/Library/Application Support/Tamo/core.db.revert.pending"};

bool within(std::string_view path, std::string_view folder) {
  return path.starts_with(folder) && (folder.ends_with('/') || path.substr(folder.size()).starts_with('/'));
}

bool belongsToCopy(std::string_view path) {
  constexpr std::array folders{Places::installed, Places::downloaded, Places::translocated, Places::trash};
  const bool inCopy =
      std::any_of(folders.begin(), folders.end(), [path](auto folder) { return within(path, folder); });
  constexpr std::array names{"/Contents/Info.plist", "/Contents/MacOS/Tamo", ".tamo.core.plist"};
  return inCopy &&
         std::any_of(names.begin(), names.end(), [path](auto name) { return path.ends_with(name); });
}

bool couldNotClear(const Companion& companion) {
  return companion.wasKilled() ||
         companion.record.struck.test(static_cast<std::size_t>(simulation::Call::remove));
}

bool couldNotClear(const World& world, std::string_view pid) {
  return std::any_of(world.companions.begin(), world.companions.end(), [pid](const auto& each) {
    return couldNotClear(*each) && std::to_string(each->pid()) == pid;
  });
}

/// The one thing that a companion cannot clear away when it is killed, or when the clearing fails.
bool isPrintOfTheHindered(const World& world, std::string_view path) {
  const auto begin = std::string(Places::temporary) + "tamo-core-print-";
  if (!path.starts_with(begin) || !path.ends_with(".txt")) return false;
  return couldNotClear(world, path.substr(begin.size(), path.size() - begin.size() - 4));
}

/// A user without an entry has the home /var/empty.
bool knewHome(const World& world) {
  return std::all_of(world.companions.begin(), world.companions.end(), [](const auto& each) {
    return !each->record.struck.test(static_cast<std::size_t>(simulation::Call::passwordEntry));
  });
}

bool isWholeResult(std::string_view bytes) {
  constexpr std::array codes{"moved", "opened", "cancelled", "not_writable", "copy_failed"};
  return std::any_of(codes.begin(), codes.end(), [bytes](std::string_view code) {
    const std::string ok = code == "moved" || code == "opened" ? "true" : "false";
    return bytes == "{\"ok\":" + ok + ",\"code\":\"" + std::string(code) + "\"}";
  });
}

std::string wrongWith(const World& world, const std::string& path, const std::string& bytes) {
  const bool isMarker = std::find(markers.begin(), markers.end(), path) != markers.end();
  if (belongsToCopy(path) || path == lockFile || isMarker || isPrintOfTheHindered(world, path)) return "";
  if (path == homelessResult && !knewHome(world)) return "";
  if (path == moveResult)
    return isWholeResult(bytes) ? "" : "a result of a move that cannot be read: " + bytes;
  if (!path.starts_with(receipts) || !path.ends_with("-core.json")) return "left behind: " + path;
  return simulation::receiptMembers(bytes) ? "" : "a receipt that cannot be read: " + bytes;
}

const platform::LogLine* outcomeOf(const Companion& companion) {
  const auto& lines = companion.record.lines;
  const auto found = std::find_if(lines.begin(), lines.end(),
                                  [](const auto& line) { return line.format == LogFormat::outcome; });
  return found == lines.end() ? nullptr : &*found;
}

/// What each action leaves behind when nothing goes wrong.
std::int64_t statusAfter(std::string_view action, const Before& before) {
  if (action == "unregister") return before.status == 1 || before.status == 2 ? 0 : before.status;
  const bool registers = action == "reseat" || (action != "sync" && before.status != 1);
  if (action == "status" || action == "bogus" || (action == "sync" && before.status != 1))
    return before.status;
  return registers && before.approvalWithheld ? 2 : 1;
}

bool succeeds(std::string_view action, const Before& before) {
  if (action == "status") return true;
  if (action == "bogus") return false;
  if (action == "unregister") return before.status == 1 || before.status == 2;
  return statusAfter(action, before) == 1;
}

}  // namespace

void judgeFiles(const World& world, std::vector<std::string>& wrong) {
  for (const auto& [path, bytes] : world.files.all()) {
    auto found = wrongWith(world, path, bytes);
    if (!found.empty()) wrong.push_back(std::move(found));
  }
}

void judgeLockFree(const Companion& companion, std::vector<std::string>& wrong) {
  const auto& record = companion.record;
  const bool inTime = record.lockTries == 1 || (companion.wasKilled() && record.lockTries == 0);
  if (record.struck.test(static_cast<std::size_t>(simulation::Call::tryLock))) return;
  if (record.lockAsked && !inTime) wrong.emplace_back("the lock was not free");
}

void judgeCleanRun(const Companion& companion, const Before& before, std::vector<std::string>& wrong) {
  const auto* line = outcomeOf(companion);
  if (line == nullptr) return;
  const auto& action = std::get<std::string>(line->arguments[0]);
  const auto& world = companion.world;
  const auto due = statusAfter(action, before);
  if (world.job.status != due)
    wrong.push_back("after a clean " + action + " the status is " + std::to_string(world.job.status));
  const std::string ok = succeeds(action, before) ? "Optional(true)" : "Optional(false)";
  if (std::get<std::string>(line->arguments[2]) != ok) wrong.push_back("a clean " + action + " is not " + ok);
  // A sync does not start what is not loaded: there is no definition to compare.
  const bool runs = due == 1 && action != "status" && (action != "sync" || before.loaded);
  if (runs && succeeds(action, before) && !world.job.corePid())
    wrong.push_back("after a clean " + action + " no Core runs");
}

}  // namespace tamo::faults

#include "simulation/file_rules.hpp"

#include <algorithm>
#include <array>
#include <string>

#include "simulation/course_rules.hpp"

namespace tamo::simulation::Referee {
namespace {

constexpr std::string_view infoFile = "/Contents/Info.plist";
constexpr std::string_view receipts = "/Users/u/Library/Application Support/TamoPKG1/M2";
constexpr std::string_view container =
    "/Library/Containers/studio.pell.Tamo/Data/Library/Application Support/Tamo";
constexpr std::string_view resultFile = "/move-to-applications.json";
constexpr std::string_view lockFile = "/tmp/u/studio.pell.tamo.core.job.lock";
constexpr std::array<std::string_view, 2> sockets{"core.sock", "talk.sock"};

bool isJoined(std::string_view path, std::string_view left, std::string_view right) {
  return path.size() == left.size() + right.size() && path.starts_with(left) && path.ends_with(right);
}

bool moves(const Companion& companion) {
  return companion.record.dispatched && actionOf(companion) == "move-to-applications";
}

/// The actions that may have to do with the job, and so with its print.
bool mayPrint(const Companion& companion) {
  const auto& action = actionOf(companion);
  return companion.record.dispatched &&
         (action == "register" || action == "reseat" || action == "restart" || action == "sync");
}

/// How often the guard looks at the copy.
int guards(const Companion& companion) {
  const bool asked = actionOf(companion) != "status" && !moves(companion) && !companion.plan.proofHome;
  return asked ? 1 : 0;
}

/// An action's outcome is reported once it is logged.
bool mayReport(const Companion& companion) {
  const auto& lines = companion.record.lines;
  return std::any_of(lines.begin(), lines.end(),
                     [](const auto& line) { return line.format == platform::LogFormat::outcome; });
}

bool isPrint(const Companion& companion, std::string_view path) {
  return path ==
         std::string(Places::temporary) + "tamo-core-print-" + std::to_string(companion.pid()) + ".txt";
}

/// Before the action, to see whether the copy has to move; then for the guard, for each hard stop, for the move.
int mostInfos(const Companion& companion) {
  const auto& record = companion.record;
  if (!record.dispatched) return 1;
  if (moves(companion)) return 3;
  const bool stops = mayPrint(companion) && record.lastLook && record.lastLook->told;
  return guards(companion) + static_cast<int>(record.begunStops()) + (stops ? 1 : 0);
}

int mostResolutions(const Companion& companion) {
  return !companion.record.dispatched || moves(companion) ? 1 : guards(companion);
}

/// An enabled agent's definition is compared by two actions.
bool compares(const Companion& companion) {
  const auto& statuses = companion.record.statuses;
  const auto& action = actionOf(companion);
  return companion.record.dispatched && (action == "restart" || action == "sync") && statuses.size() == 1 &&
         statuses.front() == 1;
}

bool mayRead(const Companion& companion, std::string_view path) {
  const auto& looks = companion.record.looks;
  if (isJoined(path, companion.plan.copy, infoFile)) return looks.infos < mostInfos(companion);
  if (isJoined(path, companion.bundlePath(), Places::agentList))
    return compares(companion) && looks.lists == 0;
  if (isJoined(path, Places::installed, infoFile))
    return moves(companion) && companion.record.destinationExists.value_or(false) && looks.destinations == 1;
  return isPrint(companion, path) && mayPrint(companion) && companion.record.printed;
}

std::string homeOf(const Companion& companion) {
  return std::string(companion.record.homeKnown ? Places::home : "/var/empty");
}

bool isReceiptFolder(const Companion& companion, std::string_view path) {
  return companion.plan.writesReceipts && mayReport(companion) && path == receipts;
}

bool mayCreate(const Companion& companion, std::string_view path) {
  return isReceiptFolder(companion, path) ||
         (moves(companion) && isJoined(path, homeOf(companion), container));
}

bool mayWrite(const Companion& companion, std::string_view path) {
  if (isPrint(companion, path)) return mayPrint(companion);
  const auto slash = path.rfind('/');
  const auto folder = path.substr(0, slash);
  const bool result = moves(companion) && path.substr(slash) == resultFile;
  return isReceiptFolder(companion, folder) || (result && isJoined(folder, homeOf(companion), container));
}

bool mayRemove(const Companion& companion, std::string_view path) {
  if (isPrint(companion, path)) return mayPrint(companion);
  return moves(companion) && companion.record.copies > 0 && path == Places::installed;
}

/// What is replaced goes before the copying, and what the copy was made from after it.
bool mayTrash(const Companion& companion, std::string_view path) {
  const auto& record = companion.record;
  if (!moves(companion)) return false;
  if (record.copies == 0) return path == Places::installed;
  const bool moved = companion.plan.copy != Places::translocated && path == companion.plan.copy;
  return path != Places::installed && (record.originalTold ? path == *record.originalTold : moved);
}

bool mayTouch(const Companion& companion, Call call, std::string_view path) {
  const auto& looks = companion.record.looks;
  switch (call) {
    case Call::exists:
      return moves(companion) && path == Places::installed && looks.destinations == 0;
    case Call::readWhole:
      return mayRead(companion, path);
    case Call::resolvedPath:
      return path == companion.plan.copy && looks.resolutions < mostResolutions(companion);
    case Call::isWritable:
      return moves(companion) && companion.record.copies > 0 && path == "/Applications";
    case Call::openForWriting:
      return isPrint(companion, path) && mayPrint(companion) && companion.record.printed;
    case Call::createDirectories:
      return mayCreate(companion, path);
    case Call::writeAtomically:
      return mayWrite(companion, path);
    case Call::remove:
      return mayRemove(companion, path);
    case Call::moveToTrash:
      return mayTrash(companion, path);
    case Call::openLock:
      return path == lockFile;
    case Call::originalLocation:
      return moves(companion) && path == Places::translocated && path == companion.plan.copy;
    default:
      return false;
  }
}

void count(Companion& companion, Call call, std::string_view path) {
  auto& looks = companion.record.looks;
  if (call == Call::exists) ++looks.destinations;
  if (call == Call::resolvedPath) ++looks.resolutions;
  if (call != Call::readWhole) return;
  if (isJoined(path, companion.plan.copy, infoFile)) ++looks.infos;
  if (path.ends_with(Places::agentList)) ++looks.lists;
}

}  // namespace

void touches(Companion& companion, Call call, std::string_view path) {
  companion.expect(mayTouch(companion, call, path), Invariant::Files, path);
  count(companion, call, path);
}

void triesSocket(Companion& companion, std::string_view path, bool accepted) {
  auto& record = companion.record;
  constexpr auto rule = Invariant::DataPlaces;
  const bool due = record.dispatched && actionOf(companion) == "register" && record.homeKnown &&
                   record.kickstart.value_or(0) != 0 && !record.socketAnswered &&
                   record.socketsTried < sockets.size();
  companion.expect(due, rule, "a socket is tried out of turn");
  if (!due) return;
  const auto here = companion.dataDirectory() + std::string(sockets[record.socketsTried++]);
  companion.expect(path == here, rule, path);
  record.socketAnswered = accepted;
}

}  // namespace tamo::simulation::Referee

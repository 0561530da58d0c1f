#include "attacks/attack.hpp"

#include <algorithm>
#include <chrono>

namespace tamo::attacks {
namespace {

namespace Places = simulation::Places;
using simulation::Process;
using simulation::ProcessKind;
using simulation::Time;

constexpr std::string_view kept = "nobody's business";
constexpr std::string_view receipts = "/Users/u/Library/Application Support/TamoPKG1/M2";
constexpr std::string_view results =
    "/Users/u/Library/Containers/studio.pell.Tamo/Data/Library/Application Support/Tamo";

std::string data(std::string_view home) {
  return std::string(home) + std::string(Places::dataInHome) + "core.db";
}

/// In place of what is there.
void linkAt(World& world, const std::string& path, std::string_view target) {
  world.files.remove(path);
  world.files.link(path, std::string(target));
}

std::string printOf(const Companion& companion) {
  return std::string(Places::temporary) + "tamo-core-print-" + std::to_string(companion.pid()) + ".txt";
}

void linkPrint(World& world, Companion& companion, const Canaries&) {
  linkAt(world, printOf(companion), Canaries::letter);
}

void takePrint(World& world, Companion& companion, const Canaries&) {
  world.files.remove(printOf(companion));
}

void linkLock(World& world, Companion&, const Canaries&) {
  linkAt(world, std::string(Places::temporary) + "studio.pell.tamo.core.job.lock", Canaries::letter);
}

void linkReceipt(World& world, Companion& companion, const Canaries&) {
  linkAt(world, std::string(receipts) + "/" + std::to_string(companion.pid()) + "-core.json",
         Canaries::letter);
}

void linkResult(World& world, Companion&, const Canaries&) {
  linkAt(world, std::string(results) + "/move-to-applications.json", Canaries::letter);
}

Process* core(World& world) {
  const auto pid = world.job.corePid();
  return pid ? world.processes.find(*pid) : nullptr;
}

void coreJoinsStranger(World& world, Companion&, const Canaries& canaries) {
  if (auto* process = core(world)) process->group = canaries.stranger();
}

void coreJoinsCompanion(World& world, Companion& companion, const Canaries&) {
  if (auto* process = core(world)) process->group = companion.group();
}

void coreJoinsLaunchd(World& world, Companion&, const Canaries&) {
  if (auto* process = core(world)) process->group = 1;
}

/// As soon as the pid is free.
void takePid(World& world, std::int32_t pid, int tries) {
  if (world.processes.isFree(pid)) {
    world.processes.spawnAs(pid, ProcessKind::Stranger, world.clocks.wallNow());
  } else if (tries > 0) {
    world.timeline.after(std::chrono::milliseconds(1),
                         [&world, pid, tries] { takePid(world, pid, tries - 1); });
  }
}

void coreDiesAndItsPidIsTaken(World& world, Companion&, const Canaries&) {
  const auto* process = core(world);
  if (process == nullptr) return;
  const auto pid = process->pid;
  world.job.sigkill(Process(*process));
  takePid(world, pid, 60);
}

void coreDies(World& world, Companion&, const Canaries&) {
  if (const auto* process = core(world)) world.job.sigkill(Process(*process));
}

void linkHere(World& world, Companion& companion, const Canaries&) {
  linkAt(world, companion.plan.copy, Canaries::folder);
}

void tamperHere(World& world, Companion& companion, const Canaries&) {
  world.placeCopy(companion.plan.copy, "com.example.other", "99", 1);
}

void spoilList(World& world, Companion& companion, const Canaries&) {
  world.files.write(companion.plan.copy + "/Contents/Info.plist", "<plist><dict><key>");
}

void takeDestination(World& world, Companion&, const Canaries&) {
  world.files.remove(Places::installed);
}

void installOther(World& world, Companion&, const Canaries&) {
  world.placeCopy(Places::installed, Places::releaseID, "43", 0);
}

void beginRevert(World& world, Companion& companion, const Canaries&) {
  world.files.write(companion.dataDirectory() + "core.db.revert.pending", "");
}

void endRevert(World& world, Companion& companion, const Canaries&) {
  world.files.remove(companion.dataDirectory() + "core.db.revert.pending");
}

void unregister(World& world, Companion&, const Canaries&) {
  if (world.job.status == 1) world.job.unregisterAgent([](const auto&) {});
}

void changeDefinition(World& world, Companion&, const Canaries&) {
  world.job.definition = 1 - world.job.definition;
}

}  // namespace

Canaries::Canaries(World& world) : world_(world) {
  world.files.write(letter, std::string(kept));
  world.files.write(std::string(folder) + "/below/kept", std::string(kept));
  for (const auto home : {Places::home, Places::proofHome})
    world.files.write(data(home), std::string(kept));
  const auto& spawned = world.processes.spawn(ProcessKind::Stranger, world.clocks.wallNow());
  stranger_ = spawned.pid;
  strangerStart_ = spawned.startMicros;
}

std::vector<std::string> Canaries::harmed() const {
  std::vector<std::string> found;
  const auto expectKept = [&](const std::string& path) {
    const auto at = world_.files.all().find(path);
    if (at == world_.files.all().end() || at->second != kept) found.push_back("harmed: " + path);
  };
  expectKept(std::string(letter));
  expectKept(std::string(folder) + "/below/kept");
  for (const auto home : {Places::home, Places::proofHome})
    expectKept(data(home));
  for (const auto& [path, bytes] : world_.files.all()) {
    const bool known = path == letter || path == std::string(folder) + "/below/kept";
    if (path.starts_with(std::string(folder) + "/") && !known) found.push_back("made: " + path);
  }
  if (world_.processes.find(stranger_, strangerStart_) == nullptr) found.emplace_back("a stranger was hit");
  return found;
}

void Canaries::removeFiles() {
  for (const auto& path : {std::string(letter), std::string(folder) + "/below/kept", data(Places::home),
                           data(Places::proofHome)})
    world_.files.remove(path);
}

const Attack* attackNamed(std::string_view name) {
  const auto found = std::ranges::find(attacks(), name, &Attack::name);
  return found == attacks().end() ? nullptr : &*found;
}

const std::vector<Attack>& attacks() {
  // Whoever spoils a copy is the one who loses it; a print that is laid after the last one is nobody else's, and so is
  // a copy that is laid after a failed one was cleared away.
  static const std::vector<Attack> all{
      {.name = "print-linked", .strike = linkPrint, .excused = {Invariant::Leftovers}},
      {.name = "print-taken", .strike = takePrint},
      {.name = "lock-linked", .strike = linkLock},
      {.name = "receipt-linked", .strike = linkReceipt},
      {.name = "result-linked", .strike = linkResult},
      {.name = "core-joins-stranger", .strike = coreJoinsStranger},
      {.name = "core-joins-companion", .strike = coreJoinsCompanion},
      {.name = "core-joins-launchd", .strike = coreJoinsLaunchd},
      {.name = "core-dies", .strike = coreDies},
      {.name = "core-pid-taken", .strike = coreDiesAndItsPidIsTaken},
      {.name = "copy-linked", .strike = linkHere, .excused = {Invariant::LastCopy}},
      // Between the two readings of its list, the identifier that was judged becomes the one that names the result's folder
      // and the application that is waited for.
      {.name = "copy-tampered",
       .strike = tamperHere,
       .excused = {Invariant::LastCopy, Invariant::Files, Invariant::Waits},
       .mayLeave = "/Users/u/Library/Containers/com.example.other"},
      {.name = "list-spoilt",
       .strike = spoilList,
       .excused = {Invariant::LastCopy, Invariant::WholeOrAbsent}},
      {.name = "destination-taken",
       .strike = takeDestination,
       .excused = {Invariant::LastCopy, Invariant::MoveResult}},
      {.name = "destination-appears", .strike = installOther, .excused = {Invariant::WholeOrAbsent}},
      {.name = "revert-begins", .strike = beginRevert},
      {.name = "revert-ends", .strike = endRevert},
      {.name = "unregistered", .strike = unregister},
      {.name = "definition-changed", .strike = changeDefinition},
  };
  return all;
}

}  // namespace tamo::attacks

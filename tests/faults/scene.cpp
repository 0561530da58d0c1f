#include "faults/scene.hpp"

#include <algorithm>
#include <chrono>
#include <utility>

namespace tamo::faults {
namespace {

namespace Places = simulation::Places;
using std::chrono::milliseconds;

constexpr std::string_view unknownAction = "bogus";

std::vector<Scene> agentScenes() {
  return {
      {.name = "register", .action = "register", .status = 0, .loaded = false, .coreRuns = false},
      {.name = "register-enabled", .action = "register"},
      {.name = "register-unloaded", .action = "register", .loaded = false, .coreRuns = false},
      {.name = "register-default", .action = ""},
      {.name = "unregister", .action = "unregister"},
      {.name = "reseat", .action = "reseat"},
      {.name = "reseat-ignored", .action = "reseat", .coreIgnoresStops = true},
      {.name = "reseat-new", .action = "reseat", .status = 0, .loaded = false, .coreRuns = false},
      {.name = "restart", .action = "restart"},
      {.name = "restart-ignored", .action = "restart", .coreIgnoresStops = true},
      {.name = "restart-spared", .action = "restart", .coreIgnoresStops = true, .markerIn = Places::home},
      {.name = "restart-changed", .action = "restart", .definition = 1},
      {.name = "restart-unloaded", .action = "restart", .loaded = false, .coreRuns = false},
      {.name = "restart-new", .action = "restart", .status = 0, .loaded = false, .coreRuns = false},
      {.name = "restart-unapproved",
       .action = "restart",
       .status = 2,
       .loaded = false,
       .coreRuns = false,
       .approvalWithheld = true},
      {.name = "sync", .action = "sync"},
      {.name = "sync-changed", .action = "sync", .definition = 1},
      {.name = "sync-new", .action = "sync", .status = 0, .loaded = false, .coreRuns = false},
      {.name = "status", .action = "status"},
      {.name = "unknown", .action = unknownAction},
      {.name = "refused", .action = "restart", .copy = Places::downloaded, .installed = "41"},
      {.name = "proof-restart-ignored",
       .action = "restart",
       .copy = Places::downloaded,
       .coreIgnoresStops = true,
       .markerIn = Places::home,
       .proofHome = true},
      {.name = "proof-restart-spared",
       .action = "restart",
       .copy = Places::downloaded,
       .coreIgnoresStops = true,
       .markerIn = Places::proofHome,
       .proofHome = true},
      {.name = "proof-register", .action = "register", .copy = Places::downloaded, .proofHome = true},
      {.name = "status-elsewhere", .action = "status", .copy = Places::downloaded, .installed = "41"},
  };
}

std::vector<Scene> moveScenes() {
  constexpr std::string_view move = "move-to-applications";
  constexpr auto here = Places::downloaded;
  return {
      {.name = "move-copies", .action = move, .copy = here},
      {.name = "move-default", .action = "", .copy = here},
      {.name = "move-replaces", .action = move, .copy = here, .installed = "41"},
      {.name = "move-opens", .action = move, .copy = here, .installed = "43"},
      {.name = "move-allowed", .action = move, .copy = here, .applicationsWritable = false},
      {.name = "move-cancelled",
       .action = move,
       .copy = here,
       .applicationsWritable = false,
       .administrator = 0},
      {.name = "move-translocated", .action = move, .copy = Places::translocated},
      {.name = "move-replaces-translocated",
       .action = move,
       .copy = Places::translocated,
       .installed = "41",
       .originalKnown = false},
      {.name = "move-needless", .action = move},
  };
}

/// The main application of the copy that is asked quits when the move has waited for it a while.
void runApplication(World& world, const Scene& scene) {
  world.applications.push_back({std::string(Places::releaseID), std::string(scene.copy)});
  world.timeline.after(std::chrono::seconds(scene.applicationsWritable ? 3 : 13),
                       [&world] { world.applications.clear(); });
}

}  // namespace

const std::vector<Scene>& scenes() {
  static const std::vector<Scene> all = [] {
    auto both = agentScenes();
    for (auto& scene : moveScenes())
      both.push_back(std::move(scene));
    return both;
  }();
  return all;
}

const Scene* sceneNamed(std::string_view name) {
  const auto& all = scenes();
  const auto found =
      std::find_if(all.begin(), all.end(), [name](const auto& each) { return each.name == name; });
  return found == all.end() ? nullptr : &*found;
}

void furnish(World& world, const Scene& scene) {
  world.processes.spawnAs(1, simulation::ProcessKind::Launchd, Time(0));
  world.placeCopy(scene.copy, Places::releaseID, "42", 0);
  if (scene.copy == Places::translocated) {
    world.placeCopy(Places::downloaded, Places::releaseID, "42", 0);
    if (scene.originalKnown) world.original = Places::downloaded;
  }
  if (!scene.installed.empty()) world.placeCopy(Places::installed, Places::releaseID, scene.installed, 0);
  world.copiesAtFirst = world.wholeCopies(false);
  world.applicationsWritable = scene.applicationsWritable;
  world.administrator = scene.administrator;
  if (!scene.markerIn.empty())
    world.files.write(
        std::string(scene.markerIn) + std::string(Places::dataInHome) + "core.db.revert.pending", "");
  auto& job = world.job;
  job.status = scene.status;
  job.loaded = scene.loaded;
  job.definition = scene.definition;
  job.approvalWithheld = scene.approvalWithheld;
  job.coresIgnoreStops = scene.coreIgnoresStops;
  if (scene.coreRuns) job.startCore();
  if (scene.copy != Places::installed) runApplication(world, scene);
}

CompanionPlan planOf(const Scene& scene, By by, std::string_view action, std::string name) {
  CompanionPlan plan;
  plan.name = std::move(name);
  plan.copy = scene.copy;
  plan.arguments.emplace_back("Tamo Core");
  plan.writesReceipts = by == By::Switch;
  plan.proofHome = scene.proofHome;
  plan.exitsInTerminate = by == By::Switch;
  if (action.empty()) return plan;
  const std::string asked(action);
  if (by == By::Url) {
    // A URL with another name asks for nothing.
    const auto means = asked == unknownAction ? std::nullopt : std::optional(asked);
    plan.urls.push_back({milliseconds(100), "tamo-core://" + asked, means});
  } else {
    plan.arguments.emplace_back("--core-action");
    plan.arguments.push_back(asked);
    plan.argumentsMean = asked;
  }
  return plan;
}

}  // namespace tamo::faults
